#include "host/mfc/widgets/script.h"

#include "host/ed/acdocman.h"
#include "host/ed/commandrunner.h"
#include "host/ed/console.h"
#include "host/ed/input.h"
#include "host/mfc/widgets/application.h"
#include "host/mfc/widgets/popupmenu.h"
#include "host/rx/text.h"
#include "host/win/paths.h"

#include <QApplication>
#include <algorithm>
#include <array>
#include <charconv>

namespace host {
namespace {

// A line cut into its words; the last part keeps its blanks.
class Words {
public:
    explicit Words(std::wstring_view line) : rest_(line) {}

    std::wstring next() {
        const std::size_t end = rest_.find_first_of(L" \t");
        std::wstring word(rest_.substr(0, end));
        rest_.remove_prefix(end == rest_.npos ? rest_.size() : end + 1);
        return word;
    }
    std::wstring rest() const { return std::wstring(rest_); }

private:
    std::wstring_view rest_;
};

std::optional<int> numberIn(std::wstring_view text) {
    const std::string bytes = toUtf8(text);
    int number = 0;
    const auto [end, error] = std::from_chars(bytes.data(), bytes.data() + bytes.size(), number);
    return error == std::errc() && end == bytes.data() + bytes.size() ? std::optional(number) : std::nullopt;
}

DialogWindow* frontModal() {
    const std::vector<HWND>& dialogs = openDialogs();
    for (auto at = dialogs.rbegin(); at != dialogs.rend(); ++at) {
        DialogWindow* dialog = dialogOf(*at);
        if (dialog != nullptr && dialog->modal && !dialog->ended)
            return dialog;
    }
    return nullptr;
}

// Those that a line may be for, the first to look in first.
std::vector<DialogWindow*> addressed() {
    if (DialogWindow* modal = frontModal())
        return {modal};
    std::vector<DialogWindow*> dialogs;
    for (auto at = openDialogs().rbegin(); at != openDialogs().rend(); ++at)
        if (DialogWindow* dialog = dialogOf(*at); dialog != nullptr && !dialog->widget->isHidden())
            dialogs.push_back(dialog);
    return dialogs;
}

void collect(const HWND__& window, UINT id, std::vector<HWND>& found) {
    for (const HWND child : window.children) {
        if (child->id == id)
            found.push_back(child);
        collect(*child, id, found);
    }
}

std::wstring nameOf(const DialogWindow& dialog) {
    return dialog.kind() + L"“" + dialog.text() + L"”";
}

// "1 按钮 确定(O)"
std::wstring describe(const HWND__& control) {
    std::wstring line = std::to_wstring(control.id) + L" " + control.kind();
    const std::wstring text = control.kind() == L"编辑框" ? L"" : withoutMnemonic(control.text());
    return text.empty() || text.size() > 20 ? line : line + L" " + text;
}

std::wstring listControls(const DialogWindow& dialog) {
    std::wstring list;
    for (const HWND child : dialog.children)
        if (child->id != 0 && child->id != IDC_STATIC && child->kind() != L"分组框" &&
            child->kind() != L"标签")
            list += (list.empty() ? L"" : L", ") + describe(*child);
    return list.empty() ? L"没有控件" : L"控件: " + list;
}

// An error is thrown as the text to be told.
struct Refused {
    std::wstring line;
};

// `210#3` is the third control with the number 210.
HWND controlOf(const std::wstring& word) {
    const std::size_t mark = word.find(L'#');
    const std::optional<int> id = numberIn(std::wstring_view(word).substr(0, mark));
    const std::optional<int> which =
        mark == word.npos ? std::optional(1) : numberIn(std::wstring_view(word).substr(mark + 1));
    if (!id || !which || *which < 1)
        throw Refused{L"控件号不对: “" + word + L"”"};
    const std::vector<DialogWindow*> dialogs = addressed();
    for (const DialogWindow* dialog : dialogs) {
        std::vector<HWND> found;
        collect(*dialog, static_cast<UINT>(*id), found);
        if (static_cast<std::size_t>(*which) <= found.size())
            return found[static_cast<std::size_t>(*which) - 1];
    }
    if (dialogs.empty())
        throw Refused{L"没有打开的对话框"};
    throw Refused{nameOf(*dialogs.front()) + L"中没有控件 " + word + L"；" + listControls(*dialogs.front())};
}

// By hand it could not be reached either.
HWND usableControl(const std::wstring& word) {
    HWND control = controlOf(word);
    if (!control->isEnabled())
        throw Refused{L"控件 " + word + L"（" + describe(*control) + L"）现在不可用"};
    if (control->widget->isHidden())
        throw Refused{L"控件 " + word + L"（" + describe(*control) + L"）现在不可见"};
    return control;
}

void demand(const std::wstring& word, const std::wstring& fault) {
    if (!fault.empty())
        throw Refused{L"控件 " + word + L": " + fault};
}

void set(Words& words) {
    const std::wstring id = words.next();
    HWND control = usableControl(id);
    control->widget->setFocus(Qt::TabFocusReason);
    demand(id, control->scriptSet(words.rest()));
}

void check(Words& words) {
    const std::wstring id = words.next();
    HWND control = usableControl(id);
    const std::wstring value(trim(words.rest()));
    if (value != L"0" && value != L"1")
        throw Refused{L"@check 的值应为 0 或 1，而不是“" + value + L"”"};
    demand(id, control->scriptCheck(value == L"1"));
}

void click(Words& words) {
    const std::wstring id(trim(words.rest()));
    const std::vector<DialogWindow*> dialogs = addressed();
    const std::optional<int> number = numberIn(id);
    // Enter and Escape work where no such button stands.
    const bool direct = number && (*number == IDOK || *number == IDCANCEL) && !dialogs.empty() &&
                        dialogs.front()->child(static_cast<UINT>(*number)) == nullptr;
    if (direct) {
        DialogWindow& dialog = *dialogs.front();
        guarded([&] { dialog.send(*number == IDCANCEL ? WM_CLOSE : WM_COMMAND, IDOK); });
        return;
    }
    HWND control = usableControl(id);
    control->widget->setFocus(Qt::TabFocusReason);
    demand(id, control->scriptClick());
}

// The right button, or its key: in the middle of the control, or on its chosen row.
void context(Words& words) {
    HWND control = usableControl(std::wstring(trim(words.rest())));
    control->rightClick(control->contextPlace());
}

void chooseInMenu(Words& words) {
    PopupMenu* menu = openMenu();
    if (menu == nullptr)
        throw Refused{L"没有打开的菜单"};
    if (const std::wstring fault = menu->choose(std::wstring(trim(words.rest()))); !fault.empty())
        throw Refused{fault};
}

void select(Words& words) {
    const std::wstring id = words.next();
    HWND control = usableControl(id);
    std::vector<int> items;
    const std::wstring list(trim(words.rest()));
    for (std::size_t at = 0; !list.empty() && at != std::wstring::npos;) {
        const std::size_t comma = list.find(L',', at);
        const std::optional<int> item = numberIn(trim(std::wstring_view(list).substr(at, comma - at)));
        if (!item)
            throw Refused{L"@select 的行号不对: “" + list + L"”"};
        items.push_back(*item);
        at = comma == std::wstring::npos ? comma : comma + 1;
    }
    control->widget->setFocus(Qt::TabFocusReason);
    demand(id, control->scriptSelect(items));
}

void cell(Words& words) {
    const std::wstring id = words.next();
    HWND control = usableControl(id);
    const std::wstring row = words.next(), column = words.next();
    const std::optional<int> rowNumber = numberIn(row), columnNumber = numberIn(column);
    if (!rowNumber || !columnNumber)
        throw Refused{L"@cell 的行列号不对: “" + row + L" " + column + L"”"};
    demand(id, control->scriptCell(*rowNumber, *columnNumber, words.rest()));
}

void get(Words& words) {
    console().line(controlOf(std::wstring(trim(words.rest())))->scriptGet());
}

void shot(Words& words) {
    const std::wstring name(trim(words.rest()));
    const std::vector<DialogWindow*> dialogs = addressed();
    if (name.empty())
        throw Refused{L"@shot 缺少文件名"};
    const PopupMenu* menu = openMenu();
    if (dialogs.empty() && menu == nullptr)
        throw Refused{L"没有打开的对话框"};
    if (menu != nullptr)
        menu->widget()->adjustSize();
    QWidget& shown = menu != nullptr ? *menu->widget() : *dialogs.front()->widget;
    const QImage picture = widgetPicture(shown, shown.devicePixelRatioF());
    if (!picture.save(toQt(name), "PNG"))
        throw Refused{L"无法写入图片: " + name};
}

void answer(Words& words) {
    const std::wstring id(trim(words.rest()));
    DialogWindow* box = frontModal();
    if (box == nullptr || !box->isMessageBox)
        throw Refused{L"没有打开的消息框"};
    const std::optional<int> number = numberIn(id);
    HWND button = number ? box->child(static_cast<UINT>(*number)) : nullptr;
    if (button == nullptr || !isPushButton(button))
        throw Refused{nameOf(*box) + L"没有答案 " + id + L"；" + listControls(*box)};
    button->scriptClick();
}

struct Verb {
    std::wstring_view name;
    void (*run)(Words&);
    bool worksOnMenus = false; // the others can't reach past an open menu
};
constexpr std::array<Verb, 10> verbs{{{L"@set", set},
                                      {L"@check", check},
                                      {L"@click", click},
                                      {L"@context", context},
                                      {L"@menu", chooseInMenu, true},
                                      {L"@select", select},
                                      {L"@cell", cell},
                                      {L"@get", get},
                                      {L"@shot", shot, true},
                                      {L"@answer", answer}}};

void perform(const std::wstring& line) {
    Words words(line);
    const std::wstring name = words.next();
    const auto found = std::ranges::find(verbs, name, &Verb::name);
    if (found == verbs.end())
        throw Refused{L"不认识的对话框指令: “" + name + L"”"};
    if (openMenu() != nullptr && !found->worksOnMenus)
        throw Refused{L"菜单打开着，请先用 @menu 选一项；" + openMenu()->listItems()};
    found->run(words);
}

// The line as it was read, in the dialogue.
void show(const std::wstring& line) {
    const UserInput* user = inputStream().user();
    if (user != nullptr && user->echoesItself())
        console().answeredInPlace();
    else
        console().line(line);
}

// Nobody answers: the script can't go on, since its next lines were meant for somewhere else.
void tellUnanswered(const std::wstring& name, const std::wstring& choices) {
    UserInput* user = inputStream().user();
    if (user == nullptr)
        return;
    const bool terminal = user->echoesItself();
    reportFailure(name + (terminal ? L"没有应答，已取消。" : L"没有应答，脚本到此结束。") + choices);
    if (!terminal)
        user->close();
}

// Reads lines until what is open has ended, or an exception is to be thrown; false when there are no more
// before.
template <class Ended>
bool followLines(Ended hasEnded) {
    while (!hasEnded()) {
        processEvents();
        if (keptException() || hasEnded())
            return true;
        const std::optional<std::wstring> line = inputStream().takeDialogLine();
        if (!line)
            return false;
        driveDialogs(*line);
    }
    return true;
}

void runByScript(DialogWindow& dialog) {
    if (!followLines([&] { return dialog.ended || dialog.dying; })) {
        tellUnanswered(nameOf(dialog), listControls(dialog));
        dialog.end(IDCANCEL);
    }
}

bool worksByHand() {
    const UserInput* user = inputStream().user();
    return user != nullptr && user->worksDialogs();
}

void runByHand(DialogWindow& dialog) {
    QEventLoop loop;
    dialog.loop = &loop;
    while (!dialog.ended && !dialog.dying && !keptException()) {
        loop.processEvents(QEventLoop::WaitForMoreEvents);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    dialog.loop = nullptr;
}

} // namespace

void driveDialogs(const std::wstring& line) {
    show(line);
    try {
        perform(line);
    } catch (const Refused& refused) {
        reportFailure(refused.line);
    }
    processEvents();
}

int runModal(DialogWindow& dialog) {
    if (dialog.ended)
        return dialog.result;
    const ActiveBitScope active(curDoc(), 8);
    const QPointer<HWND__> alive(&dialog);
    dialog.widget->show();
    dialog.widget->activateWindow();
    if (worksByHand())
        runByHand(dialog);
    else
        runByScript(dialog);
    return alive.isNull() ? IDCANCEL : dialog.result;
}

void runMenu(PopupMenu& menu, QPoint at) {
    if (worksByHand())
        menu.runByHand(at);
    else if (!followLines([&] { return menu.hasEnded(); }))
        tellUnanswered(L"菜单", menu.listItems());
}

void dialogOpened() {
    DialogHook& hook = dialogHook();
    hook.isOpen = [] { return !addressed().empty(); };
    hook.drive = [](const std::wstring& line) {
        driveDialogs(line);
        throwKept();
    };
}

QImage widgetPicture(QWidget& widget, double scale) {
    widget.ensurePolished();
    QImage picture(widget.size() * scale, QImage::Format_RGB32);
    picture.setDevicePixelRatio(scale);
    picture.fill(widget.palette().color(QPalette::Window));
    widget.render(&picture);
    return picture;
}

} // namespace host
