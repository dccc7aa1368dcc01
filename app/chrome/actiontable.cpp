#include "app/chrome/actiontable.h"

namespace app {
namespace {

/// Marks a text for translation.
constexpr const char* T(const char* text) {
    return text;
}

constexpr const char* file = T("文件(&F)");
constexpr const char* edit = T("编辑(&E)");
constexpr const char* view = T("视图(&V)");
constexpr const char* insertion = T("插入(&I)");
constexpr const char* format = T("格式(&O)");
constexpr const char* tools = T("工具(&T)");
constexpr const char* draw = T("绘图(&D)");
constexpr const char* dimension = T("标注(&N)");
constexpr const char* modify = T("修改(&M)");
constexpr const char* common = T("通用工具(&G)");
constexpr const char* help = T("帮助(&H)");

constexpr const char* standardBar = T("标准");
constexpr const char* drawBar = T("绘图");
constexpr const char* modifyBar = T("修改");
constexpr const char* commonBar = T("通用工具");

constexpr const char* titles[] = {file, edit,      view,   insertion, format, tools,
                                  draw, dimension, modify, common,    help};

constexpr ActionRow separator(const char* menu) {
    return {menu, nullptr, nullptr, nullptr, nullptr, nullptr};
}
constexpr ActionRow gap(const char* bar) {
    return {nullptr, nullptr, nullptr, nullptr, nullptr, bar};
}

constexpr ActionRow rows[] = {
    {file, T("新建(&N)"), "@new", "new", "Ctrl+N", standardBar},
    {file, T("打开(&O)..."), "@open", "open", "Ctrl+O", standardBar},
    {file, T("最近的文件(&R)"), "@recent", nullptr, nullptr, nullptr},
    {file, T("关闭(&C)"), "@close", nullptr, "Ctrl+W", nullptr},
    separator(file),
    {file, T("保存(&S)"), "@save", "save", "Ctrl+S", standardBar},
    {file, T("另存为(&A)..."), "@saveas", "saveas", "Ctrl+Shift+S", nullptr},
    separator(file),
    {file, T("打印(&P)..."), "_.PLOT", "plot", "Ctrl+P", standardBar},
    {file, T("打印预览(&V)"), "_.PREVIEW", "preview", nullptr, standardBar},
    {file, T("输出 PDF/PNG/SVG(&E)..."), "@export", nullptr, nullptr, nullptr},
    separator(file),
    {file, T("核查(&D)"), "_.AUDIT", nullptr, nullptr, nullptr},
    {file, T("清理(&L)"), "_.PURGE", nullptr, nullptr, nullptr},
    separator(file),
    {file, T("退出(&X)"), "@quit", nullptr, "Ctrl+Q", nullptr},

    gap(standardBar),
    {edit, T("放弃(&U)"), "_.U", "undo", "Ctrl+Z", standardBar},
    {edit, T("重做(&R)"), "_.REDO", "redo", "Ctrl+Y", standardBar},
    separator(edit),
    {edit, T("剪切(&T)"), "@cut", nullptr, "Ctrl+X", nullptr},
    {edit, T("复制(&C)"), "@copy", nullptr, "Ctrl+C", nullptr},
    {edit, T("带基点复制(&B)"), "@copybase", nullptr, "Ctrl+Shift+C", nullptr},
    {edit, T("粘贴(&P)"), "@paste", nullptr, "Ctrl+V", nullptr},
    {edit, T("粘贴为块(&K)"), "@pasteblock", nullptr, "Ctrl+Shift+V", nullptr},
    {edit, T("粘贴到原坐标(&D)"), "@pasteorig", nullptr, nullptr, nullptr},
    separator(edit),
    {edit, T("全部选择(&L)"), "@selectall", nullptr, "Ctrl+A", nullptr},
    {edit, T("清除(&A)"), "_.ERASE", nullptr, nullptr, nullptr},
    separator(edit),
    {edit, T("查找(&F)..."), "_.FIND", nullptr, "Ctrl+F", nullptr},

    gap(standardBar),
    {view, T("重画(&R)"), "_.REDRAW", nullptr, nullptr, nullptr, true},
    {view, T("重生成(&G)"), "_.REGEN", nullptr, nullptr, nullptr, true},
    separator(view),
    {view, T("平移(&P)"), "_.PAN", "pan", nullptr, standardBar, true},
    {view, T("放大(&I)"), "@zoomin", "zoomin", nullptr, nullptr},
    {view, T("缩小(&O)"), "@zoomout", "zoomout", nullptr, nullptr},
    {view, T("窗口缩放(&W)"), "_.ZOOM _W", "zoomwindow", nullptr, standardBar, true},
    {view, T("上一个视图(&P)"), "_.ZOOM _P", "zoomprevious", nullptr, standardBar, true},
    {view, T("范围缩放(&E)"), "@zoomextents", "zoomextents", nullptr, standardBar},
    separator(view),
    {view, T("命名视图(&N)..."), "_.-VIEW", nullptr, nullptr, nullptr},
    separator(view),
    {view, T("模型(&M)"), "_.MODEL", nullptr, nullptr, nullptr},
    {view, T("布局(&L)"), "_.LAYOUT", nullptr, nullptr, nullptr},
    {view, T("新建视口(&V)"), "_.MVIEW", nullptr, nullptr, nullptr},
    {view, T("在视口中工作(&S)"), "_.MSPACE", nullptr, nullptr, nullptr},
    {view, T("回到图纸(&H)"), "_.PSPACE", nullptr, nullptr, nullptr},
    separator(view),
    {view, T("文本窗口(&T)"), "@textwindow", nullptr, "F2", nullptr},
    {view, T("工具栏和面板(&B)"), "@panels", nullptr, nullptr, nullptr},

    {insertion, T("插入块(&B)..."), "_.-INSERT", "insert", nullptr, nullptr},
    {insertion, T("创建块(&M)..."), "_.-BLOCK", "block", nullptr, nullptr},
    {insertion, T("写块(&W)..."), "_.-WBLOCK", nullptr, nullptr, nullptr},

    {format, T("图层(&L)..."), "@layers", "layers", nullptr, standardBar},
    {format, T("图层隔离(&A)"), "_.LAYISO", nullptr, nullptr, nullptr},
    {format, T("取消图层隔离(&X)"), "_.LAYUNISO", nullptr, nullptr, nullptr},
    {format, T("关闭对象的图层(&F)"), "_.LAYOFF", nullptr, nullptr, nullptr},
    {format, T("打开所有图层(&O)"), "_.LAYON", nullptr, nullptr, nullptr},
    {format, T("冻结对象的图层(&Z)"), "_.LAYFRZ", nullptr, nullptr, nullptr},
    {format, T("解冻所有图层(&T)"), "_.LAYTHW", nullptr, nullptr, nullptr},
    {format, T("锁定对象的图层(&K)"), "_.LAYLCK", nullptr, nullptr, nullptr},
    {format, T("解锁对象的图层(&U)"), "_.LAYULK", nullptr, nullptr, nullptr},
    {format, T("将对象的图层置为当前(&C)"), "_.LAYMCUR", nullptr, nullptr, nullptr},
    {format, T("图层匹配(&M)"), "_.LAYMCH", nullptr, nullptr, nullptr},
    {format, T("更改为当前图层(&G)"), "_.LAYCUR", nullptr, nullptr, nullptr},
    {format, T("合并图层(&E)"), "_.LAYMRG", nullptr, nullptr, nullptr},
    {format, T("删除图层(&D)"), "_.LAYDEL", nullptr, nullptr, nullptr},
    separator(format),
    {format, T("线型(&N)..."), "_.-LINETYPE", nullptr, nullptr, nullptr},
    {format, T("文字样式(&S)..."), "_.-STYLE", nullptr, nullptr, nullptr},
    {format, T("单位(&W)..."), "_.-UNITS", nullptr, nullptr, nullptr},
    {format, T("图形界限(&I)"), "_.LIMITS", nullptr, nullptr, nullptr},
    {format, T("重命名(&R)..."), "_.-RENAME", nullptr, nullptr, nullptr},

    {tools, T("特性(&P)"), "@properties", "properties", "Ctrl+1", standardBar},
    separator(tools),
    {tools, T("距离(&D)"), "_.DIST", "distance", nullptr, standardBar, true},
    {tools, T("面积(&A)"), "_.AREA", nullptr, nullptr, nullptr},
    {tools, T("列表(&L)"), "_.LIST", "list", nullptr, nullptr},
    {tools, T("点坐标(&I)"), "_.ID", nullptr, nullptr, nullptr, true},
    separator(tools),
    {tools, T("绘图次序(&O)"), "_.DRAWORDER", nullptr, nullptr, nullptr},
    {tools, T("编组(&G)"), "_.-GROUP", nullptr, nullptr, nullptr},
    separator(tools),
    {tools, T("选择类似对象(&T)"), "_.SELECTSIMILAR", nullptr, nullptr, nullptr},
    {tools, T("运行脚本(&R)..."), "_.SCRIPT", nullptr, nullptr, nullptr},
    {tools, T("图形状态(&S)"), "_.STATUS", nullptr, nullptr, nullptr, true},
    separator(tools),
    {tools, T("用户坐标系(&U)"), "_.UCS", nullptr, nullptr, nullptr},
    {tools, T("设置变量(&V)"), "_.SETVAR", nullptr, nullptr, nullptr, true},

    {draw, T("直线(&L)"), "_.LINE", "line", nullptr, drawBar},
    {draw, T("射线(&R)"), "_.RAY", nullptr, nullptr, nullptr},
    {draw, T("构造线(&T)"), "_.XLINE", nullptr, nullptr, nullptr},
    {draw, T("多线(&U)"), "_.MLINE", "mline", nullptr, drawBar},
    separator(draw),
    {draw, T("多段线(&P)"), "_.PLINE", "pline", nullptr, drawBar},
    {draw, T("三维多段线(&3)"), "_.3DPOLY", nullptr, nullptr, nullptr},
    {draw, T("正多边形(&Y)"), "_.POLYGON", "polygon", nullptr, drawBar},
    {draw, T("矩形(&G)"), "_.RECTANG", "rectangle", nullptr, drawBar},
    separator(draw),
    {draw, T("圆弧(&A)"), "_.ARC", "arc", nullptr, drawBar},
    {draw, T("圆(&C)"), "_.CIRCLE", "circle", nullptr, drawBar},
    {draw, T("圆环(&D)"), "_.DONUT", nullptr, nullptr, nullptr},
    {draw, T("样条曲线(&S)"), "_.SPLINE", "spline", nullptr, drawBar},
    {draw, T("椭圆(&E)"), "_.ELLIPSE", "ellipse", nullptr, drawBar},
    separator(draw),
    {draw, T("块(&K)"), "_.-INSERT", "insert", nullptr, drawBar},
    {draw, T("点(&O)"), "_.POINT", "point", nullptr, drawBar},
    {draw, T("定数等分(&D)"), "_.DIVIDE", nullptr, nullptr, nullptr},
    {draw, T("定距等分(&M)"), "_.MEASURE", nullptr, nullptr, nullptr},
    {draw, T("图案填充(&H)"), "_.-HATCH", "hatch", nullptr, drawBar},
    separator(draw),
    {draw, T("单行文字(&X)"), "_.TEXT", "text", nullptr, drawBar},
    {draw, T("多行文字(&W)"), "_.-MTEXT", "mtext", nullptr, drawBar},

    {dimension, T("线性(&L)"), "_.DIMLINEAR", "dimlinear", nullptr, nullptr},
    {dimension, T("对齐(&G)"), "_.DIMALIGNED", "dimaligned", nullptr, nullptr},
    {dimension, T("半径(&R)"), "_.DIMRADIUS", "dimradius", nullptr, nullptr},
    {dimension, T("直径(&D)"), "_.DIMDIAMETER", "dimdiameter", nullptr, nullptr},
    {dimension, T("角度(&A)"), "_.DIMANGULAR", "dimangular", nullptr, nullptr},

    {modify, T("特性匹配(&M)"), "_.MATCHPROP", "matchprop", nullptr, standardBar},
    separator(modify),
    {modify, T("删除(&E)"), "_.ERASE", "erase", nullptr, modifyBar},
    {modify, T("复制(&Y)"), "_.COPY", "copy", nullptr, modifyBar},
    {modify, T("镜像(&I)"), "_.MIRROR", "mirror", nullptr, modifyBar},
    {modify, T("偏移(&S)"), "_.OFFSET", "offset", nullptr, modifyBar},
    {modify, T("阵列(&A)"), "_.-ARRAY", "array", nullptr, modifyBar},
    separator(modify),
    {modify, T("移动(&V)"), "_.MOVE", "move", nullptr, modifyBar},
    {modify, T("旋转(&R)"), "_.ROTATE", "rotate", nullptr, modifyBar},
    {modify, T("缩放(&L)"), "_.SCALE", "scale", nullptr, modifyBar},
    {modify, T("拉伸(&H)"), "_.STRETCH", "stretch", nullptr, modifyBar},
    {modify, T("拉长(&G)"), "_.LENGTHEN", nullptr, nullptr, nullptr},
    separator(modify),
    {modify, T("修剪(&T)"), "_.TRIM", "trim", nullptr, modifyBar},
    {modify, T("延伸(&D)"), "_.EXTEND", "extend", nullptr, modifyBar},
    {modify, T("打断(&K)"), "_.BREAK", "break", nullptr, modifyBar},
    {modify, T("合并(&J)"), "_.JOIN", "join", nullptr, modifyBar},
    {modify, T("倒角(&C)"), "_.CHAMFER", "chamfer", nullptr, modifyBar},
    {modify, T("圆角(&F)"), "_.FILLET", "fillet", nullptr, modifyBar},
    separator(modify),
    {modify, T("编辑多段线(&P)"), "_.PEDIT", "pedit", nullptr, modifyBar},
    {modify, T("对齐(&N)"), "_.ALIGN", nullptr, nullptr, nullptr},
    {modify, T("删除重复对象(&U)"), "_.OVERKILL", nullptr, nullptr, nullptr},
    {modify, T("分解(&X)"), "_.EXPLODE", "explode", nullptr, modifyBar},

    {common, T("围墙"), "V7_Enclose", "wall", nullptr, commonBar},
    {common, T("双线围墙"), "V7_DLEnclose", "doublewall", nullptr, commonBar},
    {common, T("河流"), "V7_DrawRiver", "river", nullptr, commonBar},
    {common, T("桥梁"), "V7_DrawBridge", "bridge", nullptr, commonBar},
    {common, T("绘接图线"), "V7_LinkDrawingLine", "mapline", nullptr, commonBar},
    {common, T("打开公路中心线"), "V7_OpenRoadCenter", "roadon", nullptr, commonBar},
    {common, T("关闭公路中心线"), "V7_CloseRoadCenter", "roadoff", nullptr, commonBar},
    separator(common),
    gap(commonBar),
    {common, T("文本编辑"), "V7_EditText", "edittext", nullptr, commonBar},
    {common, T("文本工具"), "V7_TextTool", "texttool", nullptr, commonBar},
    {common, T("文本连接"), "V7_LinkText", "linktext", nullptr, commonBar},
    {common, T("文本水平对齐"), "V7_THAlign", "textalignh", nullptr, commonBar},
    {common, T("文本垂直对齐"), "V7_TVAlign", "textalignv", nullptr, commonBar},
    {common, T("中西文比例"), "V7_CCEScale", "ccscale", nullptr, commonBar},
    {common, T("字体智能替换"), "V7_ReplaceFontFile", "font", nullptr, commonBar},
    separator(common),
    gap(commonBar),
    {common, T("合计数字"), "V7_SumNum", "sum", nullptr, commonBar},
    {common, T("差值标注"), "V7_DeltaMark", "delta", nullptr, commonBar},
    {common, T("改标注字高"), "V7_Scadimh", "dimheight", nullptr, commonBar},
    {common, T("快速修改线型"), "V7_ChgLType", "linetype", nullptr, commonBar},
    separator(common),
    gap(commonBar),
    {common, T("标准图库"), "V7_StandardDWG", "library", nullptr, commonBar},
    {common, T("设置图签"), "V7_SelBorderMark", "titleblock", nullptr, commonBar},
    {common, T("批量打印"), "V7_BatchPlot", "batchplot", nullptr, commonBar},
    {common, T("十字丝设定"), "V7_SetCursor", "cursor", nullptr, commonBar, true},

    {help, T("命令和键(&K)"), "@help", nullptr, "F1", nullptr},
    {help, T("关于(&A)"), "@about", nullptr, nullptr, nullptr},
};

} // namespace

std::span<const ActionRow> actionRows() {
    return rows;
}

std::span<const char* const> menuTitles() {
    return titles;
}

} // namespace app
