// Menus: of resources and made item by item, their states and owners; choosing by a script and by hand; the
// ways that lead to them.
#include "dialogsession.h"

#include "host/mfc/widgets/application.h"
#include "host/mfc/widgets/menumodel.h"
#include "host/mfc/widgets/window.h"

#include <QAction>
#include <QApplication>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QTimer>
#include <functional>

namespace {

constexpr UINT none = static_cast<UINT>(-1);

CString textAt(const CMenu& menu, UINT position) {
    CString text;
    menu.GetMenuString(position, text, MF_BYPOSITION);
    return text;
}

std::vector<std::byte> bytesOfMenu(UINT id) {
    const std::span<const std::byte> found = host::resource(nullptr, RT_MENU, MAKEINTRESOURCE(id));
    return {found.begin(), found.end()};
}

/// Opens the menu 200 where a menu is asked for, and takes down what comes of it.
class MenuDialog : public CDialog {
public:
    MenuDialog() : CDialog(100) {}

    std::vector<CString> events;
    UINT flags = 0;
    std::function<void(CMenu&)> onOpening;
    CMenu menu;
    CEdit edit;
    CListCtrl list;

    BOOL show() { return menu.GetSubMenu(0)->TrackPopupMenu(flags, 300, 200, this); }
    void note(LPCTSTR format, int value = 0, int second = 0) {
        CString text;
        text.Format(format, value, second);
        events.push_back(text);
    }

protected:
    DECLARE_MESSAGE_MAP()
    BOOL OnInitDialog() override {
        CDialog::OnInitDialog();
        menu.LoadMenu(200);
        list.InsertColumn(0, L"名称", LVCFMT_LEFT, 60);
        list.SetItemCount(3);
        return TRUE;
    }
    void DoDataExchange(CDataExchange* exchange) override {
        CDialog::DoDataExchange(exchange);
        DDX_Control(exchange, 1001, edit);
        DDX_Control(exchange, 1009, list);
    }
    void OnContextMenu(CWnd* window, CPoint point) {
        const bool byKey = point == CPoint(-1, -1);
        note(byKey ? L"menu of %d by key" : L"menu of %d", window->GetDlgCtrlID());
        const BOOL result = show();
        note(L"gave %d", result);
    }
    void OnInitMenuPopup(CMenu* opened, UINT index, BOOL) {
        note(L"opens %d with %d", static_cast<int>(index), opened->GetMenuItemCount());
        if (onOpening)
            onOpening(*opened);
    }
    void OnCopy() { note(L"copy"); }
    void OnColor(UINT id) { note(L"color %d", static_cast<int>(id)); }
    void OnRightClick(NMHDR* header, LRESULT* result) {
        note(L"row %d", reinterpret_cast<NMITEMACTIVATE*>(header)->iItem);
        *result = reinterpret_cast<NMITEMACTIVATE*>(header)->iItem == 2;
    }
};

BEGIN_MESSAGE_MAP(MenuDialog, CDialog)
ON_WM_CONTEXTMENU()
ON_WM_INITMENUPOPUP()
ON_COMMAND(301, &MenuDialog::OnCopy)
ON_COMMAND_RANGE(311, 312, &MenuDialog::OnColor)
ON_NOTIFY(NM_RCLICK, 1009, &MenuDialog::OnRightClick)
END_MESSAGE_MAP()

using Events = std::vector<CString>;

/// Works what opens by hand.
class Hand : public host::UserInput {
public:
    host::InputItem read(const host::InputRequest&) override { return {}; }
    bool atEnd() override { return true; }
    bool worksDialogs() const override { return true; }
    void post(std::wstring_view) override {}
    std::wstring takePosted() override { return {}; }
};

class Menus : public OpenDialogSession<MenuDialog> {
protected:
    Events events() { return std::exchange(dialog.events, {}); }
    /// Runs the lines at a question, as beside a command.
    Events run(const std::string& script) {
        lines(script);
        host::inputStream().askUser(L"点:", {});
        host::processEvents();
        return events();
    }
    QWidget* widget(int id) { return dialog.GetDlgItem(id)->m_hWnd->widget; }

    Hand hand;
};

TEST_F(Menus, AreReadFromResources) {
    CMenu menu;
    ASSERT_TRUE(menu.LoadMenu(200));
    EXPECT_FALSE(menu.LoadMenu(200)) << "has one";
    ASSERT_EQ(menu.GetMenuItemCount(), 2);
    EXPECT_EQ(textAt(menu, 0), L"编辑(&E)");
    EXPECT_EQ(menu.GetMenuItemID(0), none);
    EXPECT_EQ(menu.GetMenuItemID(1), 309u);
    const CMenu* edit = menu.GetSubMenu(0);
    ASSERT_NE(edit, nullptr);
    EXPECT_EQ(menu.GetSubMenu(1), nullptr);
    ASSERT_EQ(edit->GetMenuItemCount(), 5);
    EXPECT_EQ(textAt(*edit, 0), L"复制(&C)\tCtrl+C");
    EXPECT_EQ(edit->GetMenuState(302, MF_BYCOMMAND), MF_GRAYED);
    EXPECT_EQ(edit->GetMenuState(2, MF_BYPOSITION), MF_SEPARATOR);
    EXPECT_EQ(edit->GetMenuState(3, MF_BYPOSITION), MF_POPUP | 2u << 8);
    EXPECT_EQ(menu.GetMenuState(311, MF_BYCOMMAND), MF_CHECKED) << "two menus below";
    EXPECT_EQ(edit->GetMenuState(303, MF_BYCOMMAND), MF_DISABLED);

    CMenu extended;
    ASSERT_TRUE(extended.LoadMenu(201));
    const CMenu* first = extended.GetSubMenu(0);
    ASSERT_EQ(first->GetMenuItemCount(), 4);
    EXPECT_EQ(first->GetDefaultItem(0), 401u);
    EXPECT_EQ(textAt(*first, 2), L"二二");
    EXPECT_EQ(first->GetMenuState(70402, MF_BYCOMMAND), MFT_RADIOCHECK | MF_CHECKED);
    EXPECT_EQ(extended.GetMenuState(901, MF_BYCOMMAND), MFS_GRAYED | MF_POPUP | 1u << 8);
    EXPECT_EQ(first->GetSubMenu(3)->GetMenuItemID(0), 404u);
    EXPECT_FALSE(CMenu().LoadMenu(202));
}

TEST_F(Menus, DamagedTemplatesAreNone) {
    for (const UINT id : {200u, 201u}) {
        std::vector<std::byte> bytes = bytesOfMenu(id);
        ASSERT_TRUE(host::readMenuTemplate(bytes));
        for (std::size_t size = 0; size + 4 < bytes.size(); ++size)
            EXPECT_FALSE(host::readMenuTemplate(std::span(bytes).first(size))) << id << ": " << size;
        bytes[0] = std::byte{2};
        EXPECT_FALSE(host::readMenuTemplate(bytes)) << "of a version that is none";
    }
    // Each menu holds one that holds the next: version and offset, then flags and an empty text.
    std::vector<std::byte> nested(4);
    for (int depth = 0; depth < 100000; ++depth)
        nested.insert(nested.end(), {std::byte{MF_POPUP | MF_END}, {}, {}, {}});
    EXPECT_FALSE(host::readMenuTemplate(nested));
}

TEST_F(Menus, AreBuiltAndChanged) {
    CMenu menu, below;
    ASSERT_TRUE(menu.CreatePopupMenu());
    ASSERT_TRUE(below.CreatePopupMenu());
    EXPECT_TRUE(below.AppendMenu(MF_STRING, 11, L"甲"));
    EXPECT_TRUE(below.AppendMenu(MF_STRING | MF_CHECKED, 12, L"乙"));
    EXPECT_TRUE(menu.AppendMenu(MF_STRING, 1, L"一"));
    EXPECT_TRUE(menu.AppendMenu(MF_POPUP, reinterpret_cast<UINT_PTR>(below.Detach()), L"下"));
    EXPECT_TRUE(menu.InsertMenu(1, MF_BYPOSITION | MF_SEPARATOR));
    EXPECT_TRUE(menu.InsertMenu(12, MF_BYCOMMAND | MF_GRAYED, 13, L"丙")) << "where 12 is";
    EXPECT_TRUE(menu.InsertMenu(99, MF_BYPOSITION, 2, L"二")) << "at the end";
    EXPECT_TRUE(menu.ModifyMenu(1, MF_BYCOMMAND | MF_CHECKED, 5, L"五\tF5"));
    EXPECT_FALSE(menu.ModifyMenu(1, MF_BYCOMMAND, 6, L"六"));
    EXPECT_FALSE(menu.AppendMenu(MF_OWNERDRAW, 7, L"x"));
    ASSERT_EQ(menu.GetMenuItemCount(), 4);
    EXPECT_EQ(menu.GetMenuItemID(0), 5u);
    EXPECT_EQ(menu.GetMenuItemID(1), 0u);
    CMenu* sub = menu.GetSubMenu(2);
    EXPECT_EQ(sub->GetMenuItemID(1), 13u);

    EXPECT_EQ(menu.EnableMenuItem(13, MF_BYCOMMAND | MF_ENABLED), MF_GRAYED);
    EXPECT_EQ(menu.EnableMenuItem(0, MF_BYPOSITION | MF_GRAYED), MF_ENABLED);
    EXPECT_EQ(menu.GetMenuState(5, MF_BYCOMMAND), MF_GRAYED | MF_CHECKED);
    EXPECT_EQ(menu.CheckMenuItem(12, MF_UNCHECKED), MF_CHECKED);
    EXPECT_TRUE(sub->CheckMenuRadioItem(0, 2, 1, MF_BYPOSITION));
    EXPECT_TRUE(menu.CheckMenuRadioItem(11, 13, 12, MF_BYCOMMAND));
    EXPECT_EQ(sub->GetMenuState(13, MF_BYCOMMAND), MF_UNCHECKED) << "the mark went on";
    EXPECT_EQ(sub->GetMenuState(12, MF_BYCOMMAND), MFT_RADIOCHECK | MF_CHECKED);
    EXPECT_FALSE(menu.CheckMenuRadioItem(11, 12, 13, MF_BYCOMMAND));
    EXPECT_TRUE(menu.SetDefaultItem(3, TRUE));
    EXPECT_TRUE(menu.SetDefaultItem(5));
    EXPECT_EQ(menu.GetDefaultItem(0, TRUE), 0u);
    EXPECT_TRUE(menu.SetDefaultItem(none));
    EXPECT_EQ(menu.GetDefaultItem(0), none);
    EXPECT_FALSE(menu.SetDefaultItem(77));

    wchar_t text[3];
    EXPECT_EQ(menu.GetMenuString(5, text, 3, MF_BYCOMMAND), 2);
    EXPECT_STREQ(text, L"五\t");
    EXPECT_EQ(menu.GetMenuString(77, text, 3, MF_BYCOMMAND), 0);
    EXPECT_EQ(menu.GetMenuState(4, MF_BYPOSITION), none);
    EXPECT_EQ(menu.EnableMenuItem(77, MF_BYCOMMAND), none);
    EXPECT_EQ(menu.CheckMenuItem(77, MF_BYCOMMAND), none);
    EXPECT_EQ(menu.GetMenuItemID(-1), none);
    EXPECT_TRUE(menu.DeleteMenu(11, MF_BYCOMMAND));
    EXPECT_FALSE(menu.RemoveMenu(11, MF_BYCOMMAND));
    EXPECT_EQ(sub->GetMenuItemCount(), 2);
}

TEST_F(Menus, OwnTheMenusThatTheyOpen) {
    CMenu menu;
    menu.CreateMenu();
    const HMENU kept = CreatePopupMenu(), deleted = CreatePopupMenu(), left = CreatePopupMenu();
    for (const HMENU each : {kept, deleted, left})
        EXPECT_TRUE(menu.AppendMenu(MF_POPUP, reinterpret_cast<UINT_PTR>(each), L"x"));
    EXPECT_FALSE(AppendMenu(left, MF_POPUP, reinterpret_cast<UINT_PTR>(menu.m_hMenu), L"a ring"));
    EXPECT_FALSE(AppendMenu(left, MF_POPUP, reinterpret_cast<UINT_PTR>(left), L"a ring"));
    EXPECT_TRUE(menu.RemoveMenu(0, MF_BYPOSITION));
    EXPECT_TRUE(menu.DeleteMenu(0, MF_BYPOSITION));
    EXPECT_TRUE(IsMenu(kept));
    EXPECT_FALSE(IsMenu(deleted));
    CMenu* const temporary = CMenu::FromHandle(left);
    EXPECT_EQ(CMenu::FromHandle(left), temporary);
    EXPECT_EQ(CMenu::FromHandle(menu.m_hMenu), &menu);
    const HMENU handle = menu;
    EXPECT_TRUE(menu.DestroyMenu());
    EXPECT_EQ(menu.GetSafeHmenu(), nullptr);
    EXPECT_FALSE(IsMenu(left));
    EXPECT_FALSE(DestroyMenu(handle));
    EXPECT_EQ(CMenu::FromHandle(handle), nullptr);
    EXPECT_EQ(GetMenuItemCount(handle), -1);
    EXPECT_FALSE(AppendMenu(handle, MF_STRING, 1, L"x"));
    EXPECT_FALSE(menu.TrackPopupMenu(0, 0, 0, nullptr));
    {
        CMenu owner;
        EXPECT_TRUE(owner.Attach(kept));
        EXPECT_FALSE(owner.Attach(handle));
    }
    EXPECT_FALSE(IsMenu(kept)) << "went with its object";
}

TEST_F(Menus, AreAnsweredByTheScript) {
    // The choice comes after the menu was closed; with TPM_RETURNCMD it is the result alone.
    EXPECT_EQ(run("@context 1003\n@menu 301\n\n"),
              (Events{L"menu of 1003", L"opens 0 with 5", L"gave 1", L"copy"}));
    EXPECT_EQ(run("@context 1003\n@menu 绿\n\n"),
              (Events{L"menu of 1003", L"opens 0 with 5", L"opens 3 with 2", L"gave 1", L"color 312"}));
    dialog.flags = TPM_RETURNCMD | TPM_NONOTIFY;
    EXPECT_EQ(run("@context 1003\n@menu 复制\n\n"), (Events{L"menu of 1003", L"gave 301"}));
    EXPECT_EQ(run("@context 1003\n@menu\n\n"), (Events{L"menu of 1003", L"gave 0"}));
    EXPECT_EQ(failures(), L"");
    dialog.flags = 0;
    dialog.onOpening = [](CMenu& opened) { opened.EnableMenuItem(302, MF_ENABLED); };
    run("@context 1003\n@menu 粘贴(P)\n\n");
    EXPECT_EQ(failures(), L"") << "its owner has enabled it";
    lines("@menu 301\n"); // without a window to tell
    EXPECT_EQ(dialog.menu.GetSubMenu(0)->TrackPopupMenu(TPM_RETURNCMD, 0, 0, nullptr), 301);
    host::inputStream().setUser(nullptr); // nobody to ask
    EXPECT_EQ(dialog.menu.GetSubMenu(0)->TrackPopupMenu(TPM_RETURNCMD, 0, 0, nullptr), 0);
    EXPECT_EQ(failures(), L"");
}

TEST_F(Menus, WrongAnswersAreToldAndAnUnansweredMenuEndsTheScript) {
    dialog.flags = TPM_RETURNCMD;
    struct Row {
        const char* line;
        const wchar_t* told;
    };
    for (const Row& row :
         {Row{"@menu 999", L"菜单中没有“999”；菜单项: 301 复制(C), 302 粘贴(P), 颜色(L) > 311 红"},
          Row{"@menu 粘贴", L"菜单项“粘贴(P)”现在不可用"},
          Row{"@menu 颜色", L"菜单项“颜色(L)”打开子菜单，请选其中一项"},
          Row{"@click 1013", L"菜单打开着，请先用 @menu 选一项；菜单项: 301"}}) {
        EXPECT_EQ(run(std::string("@context 1003\n") + row.line + "\n@menu 301\n\n").back(), L"gave 301");
        const std::wstring told = failures();
        EXPECT_NE(told.find(row.told), std::wstring::npos) << row.line << ": " << host::toUtf8(told);
        EXPECT_EQ(std::ranges::count(told, L'\n'), 1) << row.line;
    }
    run("@menu 1\n\n");
    EXPECT_NE(failures().find(L"没有打开的菜单"), std::wstring::npos);
    EXPECT_EQ(run("@context 1003\n10,20\nmore\n").back(), L"gave 0");
    EXPECT_NE(failures().find(L"菜单没有应答，脚本到此结束。菜单项: 301 复制(C), "), std::wstring::npos);
    EXPECT_TRUE(allRead());
    dialog.onOpening = [](CMenu&) { throw std::runtime_error("bad"); };
    EXPECT_THROW(run("@context 1003\n@menu 301\n\n"), std::runtime_error);
}

TEST_F(Menus, AreSeenAsTheyAreAndChosenByHand) {
    host::inputStream().setUser(&hand);
    QTimer looks;
    looks.setInterval(1);
    QPoint corner;
    QSize size;
    QObject::connect(&looks, &QTimer::timeout, [&] {
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        if (menu == nullptr)
            return;
        looks.stop();
        const QList<QAction*> rows = menu->actions();
        ASSERT_EQ(rows.size(), 5);
        corner = menu->pos();
        size = menu->size();
        EXPECT_FALSE(rows[1]->isEnabled());
        EXPECT_TRUE(rows[2]->isSeparator());
        EXPECT_FALSE(rows[4]->isEnabled());
        EXPECT_EQ(menu->defaultAction(), rows[0]);
        emit rows[3]->menu()->aboutToShow();
        const QList<QAction*> below = rows[3]->menu()->actions();
        EXPECT_TRUE(below[1]->isChecked() && below[1]->actionGroup() != nullptr) << "a dot";
        EXPECT_FALSE(below[0]->isChecked());
        QApplication::postEvent(menu, new QKeyEvent(QEvent::KeyPress, Qt::Key_C, {}, "c")); // its mnemonic
    });
    dialog.menu.CheckMenuRadioItem(311, 312, 312, MF_BYCOMMAND);
    dialog.menu.SetDefaultItem(301);
    dialog.flags = TPM_RETURNCMD;
    looks.start();
    EXPECT_EQ(dialog.show(), 301);
    EXPECT_EQ(corner, QPoint(300, 200));
    EXPECT_EQ(events(), (Events{L"opens 0 with 5", L"opens 3 with 2"}));
    dialog.flags = TPM_RIGHTALIGN | TPM_VCENTERALIGN | TPM_NONOTIFY;
    looks.start();
    EXPECT_TRUE(dialog.show());
    EXPECT_EQ(corner, QPoint(300 - size.width(), 200 - size.height() / 2));
    host::processEvents();
    EXPECT_EQ(events(), Events{});
    // Nothing to see, nothing to wait for.
    CMenu empty;
    empty.CreatePopupMenu();
    EXPECT_FALSE(empty.TrackPopupMenu(TPM_RETURNCMD, 0, 0, &dialog));
}

TEST_F(Menus, AreAskedForByMouseAndKeyboard) {
    const auto ask = [&](QWidget* at, QContextMenuEvent::Reason reason, QPoint place) {
        lines("@menu\n");
        QContextMenuEvent event(reason, place, at->mapToGlobal(place));
        QApplication::sendEvent(at, &event);
        return events();
    };
    dialog.flags = TPM_NONOTIFY;
    EXPECT_EQ(ask(widget(1003), QContextMenuEvent::Mouse, {3, 3}), (Events{L"menu of 1003", L"gave 1"}));
    EXPECT_EQ(ask(widget(1003), QContextMenuEvent::Keyboard, {3, 3}),
              (Events{L"menu of 1003 by key", L"gave 1"}));
    EXPECT_EQ(ask(widget(1013), QContextMenuEvent::Mouse, {3, 3}), (Events{L"menu of 0", L"gave 1"}))
        << "a disabled control leaves it to the dialog";
    lines("@menu\n");
    QKeyEvent key(QEvent::KeyPress, Qt::Key_F10, Qt::ShiftModifier);
    QApplication::sendEvent(widget(1003), &key);
    EXPECT_EQ(events(), (Events{L"menu of 1003 by key", L"gave 1"}));
    // A list tells its parent of the row first, which may be all.
    EXPECT_EQ(run("@select 1009 1\n@context 1009\n@menu\n\n"),
              (Events{L"row 1", L"menu of 1009", L"gave 1"}));
    EXPECT_EQ(run("@select 1009 2\n@context 1009\n\n"), (Events{L"row 2"}));
}

TEST_F(Menus, OfEditsWorkOnTheirText) {
    const auto text = [&] {
        CString now;
        dialog.edit.GetWindowText(now);
        return now;
    };
    QApplication::clipboard();
    EXPECT_EQ(run("@set 1001 七八\n@context 1001\n@menu 全选\n@context 1001\n@menu 剪切\n\n"), Events{});
    EXPECT_EQ(text(), L"");
    run("@context 1001\n@menu 粘贴\n@context 1001\n@menu 粘贴\n\n");
    EXPECT_EQ(text(), L"七八七八");
    run("@context 1001\n@menu 撤消\n\n");
    EXPECT_EQ(failures(), L"");
    dialog.edit.SetReadOnly();
    run("@context 1001\n@menu 粘贴\n@menu\n\n");
    EXPECT_NE(failures().find(L"“粘贴(P)”现在不可用"), std::wstring::npos);
    dialog.edit.SendMessage(EM_SETSEL, 0, -1);
    dialog.edit.SendMessage(WM_CLEAR);
    EXPECT_NE(text(), L"") << "read only";
}

} // namespace
