#include "host/mfc/widgets/toolkittexts.h"

#include <QApplication>
#include <QLocale>
#include <QTranslator>
#include <string_view>
#include <unordered_map>

namespace host {
namespace {

const std::unordered_map<std::string_view, const char*>& texts() {
    static const std::unordered_map<std::string_view, const char*> table{
        // Standard buttons.
        {"OK", "确定"},
        {"&OK", "确定(&O)"},
        {"Cancel", "取消"},
        {"&Cancel", "取消(&C)"},
        {"&Yes", "是(&Y)"},
        {"Yes to &All", "全部是(&A)"},
        {"&No", "否(&N)"},
        {"N&o to All", "全部否(&O)"},
        {"Save", "保存"},
        {"Save All", "全部保存"},
        {"Open", "打开"},
        {"Close", "关闭"},
        {"&Close", "关闭(&C)"},
        {"Abort", "中止"},
        {"Retry", "重试"},
        {"Ignore", "忽略"},
        {"Discard", "放弃"},
        {"Help", "帮助"},
        {"Apply", "应用"},
        {"Reset", "重置"},
        {"Restore Defaults", "恢复默认值"},
        {"Show Details...", "显示详细信息..."},
        {"Hide Details...", "隐藏详细信息..."},
        // Menus of edits.
        {"&Undo", "撤消(&U)"},
        {"&Redo", "重做(&R)"},
        {"Cu&t", "剪切(&T)"},
        {"&Copy", "复制(&C)"},
        {"&Paste", "粘贴(&P)"},
        {"Delete", "删除"},
        {"Select All", "全选"},
        {"Copy &Link Location", "复制链接地址(&L)"},
        // Choosing files.
        {"Look in:", "查找范围:"},
        {"Directory:", "文件夹:"},
        {"File &name:", "文件名(&N):"},
        {"Files of type:", "文件类型:"},
        {"&Open", "打开(&O)"},
        {"&Save", "保存(&S)"},
        {"&Choose", "选择(&C)"},
        {"&Rename", "重命名(&R)"},
        {"&Delete", "删除(&D)"},
        {"&New Folder", "新建文件夹(&N)"},
        {"New Folder", "新建文件夹"},
        {"Show &hidden files", "显示隐藏文件(&H)"},
        {"Show ", "显示 "},
        {"Remove", "移除"},
        {"Back", "后退"},
        {"Go back", "后退"},
        {"Forward", "前进"},
        {"Go forward", "前进"},
        {"Parent Directory", "上级文件夹"},
        {"Go to the parent directory", "到上级文件夹"},
        {"Create New Folder", "新建文件夹"},
        {"Create a New Folder", "新建文件夹"},
        {"List View", "列表"},
        {"Change to list view mode", "以列表显示"},
        {"Detail View", "详细信息"},
        {"Change to detail view mode", "以详细信息显示"},
        {"Sidebar", "侧栏"},
        {"Files", "文件"},
        {"Recent Places", "最近的位置"},
        {"Computer", "计算机"},
        {"My Computer", "我的电脑"},
        {"Name", "名称"},
        {"Size", "大小"},
        {"Type", "类型"},
        {"Kind", "类型"},
        {"Date Modified", "修改日期"},
        {"Folder", "文件夹"},
        {"All Files (*)", "所有文件 (*)"},
        {"%1 already exists.\nDo you want to replace it?", "%1 已经存在。\n要替换它吗？"},
        {"%1\nFile not found.\nPlease verify the correct file name was given.",
         "%1\n找不到文件。\n请检查文件名是否正确。"},
        {"%1\nDirectory not found.\nPlease verify the correct directory name was given.",
         "%1\n找不到文件夹。\n请检查文件夹名是否正确。"},
        {"'%1' is write protected.\nDo you want to delete it anyway?", "“%1”有写保护。\n仍要删除吗？"},
        {"Are you sure you want to delete '%1'?", "确定要删除“%1”吗？"},
        {"Could not delete directory.", "无法删除文件夹。"}};
    return table;
}

class Texts final : public QTranslator {
public:
    using QTranslator::QTranslator;

    bool isEmpty() const override { return false; }
    QString translate(const char*, const char* source, const char*, int) const override {
        const auto found = texts().find(source != nullptr ? source : "");
        return found != texts().end() ? QString::fromUtf8(found->second) : QString();
    }
};

} // namespace

// File dialogs go by the system's locale, which the toolkit reads from the environment once.
void localizeToolkit() {
    constexpr char variable[] = "LC_ALL";
    const bool wasSet = qEnvironmentVariableIsSet(variable);
    const QByteArray before = qgetenv(variable);
    qputenv(variable, "zh_CN.UTF-8");
    QLocale::system().name();
    if (wasSet)
        qputenv(variable, before);
    else
        qunsetenv(variable);
    QLocale::setDefault(QLocale(QLocale::Chinese, QLocale::China));
}

void translateToolkit(QApplication& application) {
    QCoreApplication::installTranslator(new Texts(&application));
}

} // namespace host
