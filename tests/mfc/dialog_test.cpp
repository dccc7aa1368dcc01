// Dialogs from compiled templates: exchange and validation, the order of messages, driving by a script.
#include "dialogsession.h"

namespace {

/// A dialog with one control of each kind that takes down what happens.
class TrialDialog : public CDialog {
public:
    TrialDialog() : CDialog(100) {}

    double length = 2.5;
    CString name = L"甲";
    int valid = 1, kind = 1, color = -1;
    std::vector<CString> events;
    std::vector<CString> rows{L"一", L"二", L"三"};
    CComboBox colors;
    CListBox list;
    CListCtrl table;

    using CWnd::UpdateData;

    bool asksQuestion = false;
    int answer = 0;

protected:
    DECLARE_MESSAGE_MAP()

    BOOL OnInitDialog() override {
        CDialog::OnInitDialog();
        for (const wchar_t* text : {L"绿", L"红", L"Blau", L"blank"})
            colors.SetItemData(colors.AddString(text), static_cast<DWORD_PTR>(*text));
        for (const wchar_t* text : {L"x", L"y", L"z"})
            list.AddString(text);
        table.InsertColumn(0, L"名称", LVCFMT_LEFT, 60);
        table.InsertColumn(1, L"号", LVCFMT_RIGHT, 40);
        table.SetItemCount(static_cast<int>(rows.size()));
        if (CWnd* ask = GetDlgItem(1013))
            ask->EnableWindow(asksQuestion ? TRUE : FALSE);
        note(L"init");
        return TRUE;
    }
    void DoDataExchange(CDataExchange* exchange) override {
        CDialog::DoDataExchange(exchange);
        DDX_Control(exchange, 1007, colors);
        DDX_Control(exchange, 1008, list);
        DDX_Control(exchange, 1009, table);
        DDX_Text(exchange, 1001, length);
        DDV_MinMaxDouble(exchange, length, 0.0, 10.0);
        DDX_Text(exchange, 1002, name);
        DDV_MaxChars(exchange, name, 4);
        DDX_Check(exchange, 1003, valid);
        DDX_Radio(exchange, 1004, kind);
        DDX_CBIndex(exchange, 1007, color);
    }
    void OnOK() override {
        note(L"ok");
        CDialog::OnOK();
    }
    void OnCancel() override {
        note(L"cancel");
        CDialog::OnCancel();
    }

private:
    void note(LPCTSTR what) { events.emplace_back(what); }
    void OnChangeLength() {
        CString text;
        GetDlgItemText(1001, text);
        note(L"length " + text);
    }
    void OnChangeName() { note(L"name"); }
    void OnValid() { note(IsDlgButtonChecked(1003) ? L"valid on" : L"valid off"); }
    void OnKind(UINT id) {
        CString text;
        text.Format(L"kind %u", id);
        note(text);
    }
    void OnColor() {
        CString text;
        colors.GetLBText(colors.GetCurSel(), text);
        note(L"color " + text);
    }
    void OnList() { note(L"list"); }
    void OnAskRow(NMHDR* header, LRESULT*) {
        LVITEM& item = reinterpret_cast<NMLVDISPINFO*>(header)->item;
        const CString& row = rows[static_cast<std::size_t>(item.iItem)];
        wcscpy_s(item.pszText, static_cast<std::size_t>(item.cchTextMax), item.iSubItem == 0 ? row : L"#");
    }
    void OnRow(NMHDR* header, LRESULT*) {
        const auto& change = *reinterpret_cast<NMLISTVIEW*>(header);
        CString text;
        text.Format(L"row %d %ls", change.iItem, change.uNewState & LVIS_SELECTED ? L"on" : L"off");
        note(text);
    }
    void OnAsk() { answer = MessageBox(L"真的吗？", L"提示", MB_YESNO | MB_ICONQUESTION); }
};

BEGIN_MESSAGE_MAP(TrialDialog, CDialog)
ON_EN_CHANGE(1001, &TrialDialog::OnChangeLength)
ON_EN_CHANGE(1002, &TrialDialog::OnChangeName)
ON_BN_CLICKED(1003, &TrialDialog::OnValid)
ON_CONTROL_RANGE(BN_CLICKED, 1004, 1006, &TrialDialog::OnKind)
ON_CBN_SELCHANGE(1007, &TrialDialog::OnColor)
ON_LBN_SELCHANGE(1008, &TrialDialog::OnList)
ON_NOTIFY(LVN_GETDISPINFO, 1009, &TrialDialog::OnAskRow)
ON_NOTIFY(LVN_ITEMCHANGED, 1009, &TrialDialog::OnRow)
ON_BN_CLICKED(1013, &TrialDialog::OnAsk)
END_MESSAGE_MAP()

class Dialogs : public DialogSession {
protected:
    /// Runs the trial dialog on the lines; the events after its beginning.
    std::vector<CString> run(TrialDialog& dialog, const std::string& script, INT_PTR result = IDOK) {
        lines(script);
        EXPECT_EQ(dialog.DoModal(), result);
        EXPECT_TRUE(allRead());
        EXPECT_EQ(dialog.m_hWnd, nullptr);
        const auto begin = std::ranges::find(dialog.events, CString(L"init"));
        return begin == dialog.events.end() ? dialog.events
                                            : std::vector<CString>(begin + 1, dialog.events.end());
    }
};

TEST_F(Dialogs, ValuesGoInAndComeOut) {
    TrialDialog dialog;
    lines("@get 1001\n@get 1002\n@get 1003\n@get 1004\n@get 1005\n@set 1001 7.125\n@set 1002 a b\n@check "
          "1003 0\n"
          "@check 1006 1\n@set 1007 红\n@click 1\n");
    EXPECT_EQ(dialog.DoModal(), IDOK);
    const std::wstring dialogue = shown();
    for (const wchar_t* part :
         {L"@get 1001\n2.5\n", L"@get 1002\n甲\n", L"@get 1003\n1\n", L"@get 1004\n0\n", L"@get 1005\n1\n"})
        EXPECT_NE(dialogue.find(part), std::wstring::npos) << host::toUtf8(part);
    EXPECT_EQ(dialog.length, 7.125);
    EXPECT_EQ(dialog.name, L"a b");
    EXPECT_EQ(dialog.valid, 0);
    EXPECT_EQ(dialog.kind, 2);
    EXPECT_EQ(failures(), L"");
}

TEST_F(Dialogs, MessagesComeInOrder) {
    TrialDialog dialog;
    // The fields are filled before the dialog's own beginning is over, and each text is told once.
    EXPECT_EQ(run(dialog,
                  "@set 1001 3\n@check 1003 0\n@check 1003 0\n@click 1005\n@click 1004\n@set 1007 blank\n"
                  "@select 1008 2\n@select 1009 1\n@select 1009 0\n@click 1\n"),
              (std::vector<CString>{L"length 3", L"valid off", L"kind 1005", L"kind 1004", L"color blank",
                                    L"list", L"row 1 on", L"row 1 off", L"row 0 on", L"ok"}));
    EXPECT_EQ(dialog.events.front(), L"length 2.5");
    EXPECT_EQ(dialog.kind, 0);
    EXPECT_EQ(dialog.color, 0); // sorted: blank, Blau, then the others
}

TEST_F(Dialogs, ListsKeepTheirDataAndOrder) {
    class Looking : public TrialDialog {
        void OnOK() override {
            EXPECT_EQ(colors.GetCount(), 4);
            const int blau = colors.FindStringExact(-1, L"BLAU");
            EXPECT_EQ(colors.GetItemData(blau), static_cast<DWORD_PTR>(L'B'));
            EXPECT_EQ(colors.FindString(blau, L"bl"), 0); // goes round
            EXPECT_EQ(colors.SelectString(-1, L"红"), 2);
            EXPECT_EQ(colors.GetCurSel(), 2);
            EXPECT_EQ(colors.SetCurSel(9), CB_ERR);
            EXPECT_EQ(colors.GetCurSel(), CB_ERR);
            EXPECT_EQ(colors.DeleteString(0), 3);
            EXPECT_EQ(colors.DeleteString(5), CB_ERR);
            EXPECT_EQ(list.InsertString(1, L"w"), 1);
            EXPECT_EQ(list.SetCurSel(1), 1);
            CString text;
            list.GetText(list.GetCurSel(), text);
            EXPECT_EQ(text, L"w");
            EXPECT_EQ(table.GetItemText(2, 0), L"三");
            EXPECT_EQ(table.GetItemText(3, 0), L"");
            EXPECT_EQ(table.GetNextItem(-1, LVNI_SELECTED), 2);
            EXPECT_EQ(table.GetSelectedCount(), 1u);
            rows.pop_back();
            table.SetItemCount(2);
            EXPECT_EQ(table.GetNextItem(-1, LVNI_SELECTED), -1);
            TrialDialog::OnOK();
        }
    } dialog;
    run(dialog, "@set 1009 三\n@click 1\n");
    EXPECT_EQ(failures(), L"");
}

TEST_F(Dialogs, WhatIsWrongIsSaidAndTheControlGetsTheFocus) {
    struct Row {
        const char* line;
        const wchar_t* told;
        int id;
    };
    for (const Row& row :
         {Row{"@set 1001 11", L"请输入 0 到 10 之间的数。", 1001},
          Row{"@set 1001 -0.5", L"请输入 0 到 10 之间的数。", 1001},
          Row{"@set 1001 3x", L"请输入一个数。", 1001}, Row{"@set 1001", L"请输入一个数。", 1001},
          Row{"@set 1001 nan", L"请输入一个数。", 1001}}) {
        class Refused : public TrialDialog {
        public:
            int focused = 0;

        private:
            void OnOK() override {
                TrialDialog::OnOK();
                focused = GetFocus() != nullptr ? GetFocus()->GetDlgCtrlID() : -1;
            }
        } dialog;
        lines(std::string(row.line) + "\n@click 1\n@answer 1\n");
        shown();
        EXPECT_EQ(dialog.DoModal(), IDCANCEL);
        EXPECT_NE(shown().find(row.told), std::wstring::npos) << row.line;
        EXPECT_EQ(dialog.focused, row.id) << row.line;
        // The script had nothing more for it.
        EXPECT_NE(failures().find(L"对话框“试验”没有应答"), std::wstring::npos);
    }
    TrialDialog dialog;
    run(dialog, "@set 1002 一二三四五\n@click 2\n", IDCANCEL);
    EXPECT_NE(failures().find(L"最多 4 个字符"), std::wstring::npos);
}

TEST_F(Dialogs, WrongLinesAreToldAndDoNothing) {
    struct Row {
        const char* line;
        const wchar_t* told;
    };
    for (const Row& row :
         {Row{"@set 77 1", L"没有控件 77；控件: 1001 编辑框"}, Row{"@set abc 1", L"控件号不对: “abc”"},
          Row{"@set 1007 黑", L"下拉列表中没有“黑”"}, Row{"@select 1007 4", L"行号应为 0 到 3"},
          Row{"@select 1008 0,1", L"只能选一行"}, Row{"@select 1009 3", L"没有第 3 项"},
          Row{"@select 1009 a", L"行号不对: “a”"}, Row{"@check 1003 2", L"应为 0 或 1"},
          Row{"@check 1001 1", L"编辑框不能勾选"}, Row{"@set 1010 1a", L"只接受数字"},
          Row{"@set 1011 200", L"0 到 100"}, Row{"@cell 1009 0 0 x", L"列表不是表格"},
          Row{"@click 1013", L"（1013 按钮 询问(Q)）现在不可用"}, Row{"@answer 1", L"没有打开的消息框"},
          Row{"@wave 1", L"不认识的对话框指令: “@wave”"}, Row{"@shot", L"缺少文件名"},
          Row{"@shot /none/x.png", L"无法写入图片: /none/x.png"}}) {
        TrialDialog dialog;
        const std::vector<CString> events = run(dialog, std::string(row.line) + "\n@click 2\n", IDCANCEL);
        EXPECT_EQ(events, (std::vector<CString>{L"cancel"})) << row.line;
        const std::wstring told = failures();
        EXPECT_NE(told.find(row.told), std::wstring::npos) << row.line << ": " << host::toUtf8(told);
        EXPECT_EQ(std::ranges::count(told, L'\n'), 1) << row.line;
    }
}

TEST_F(Dialogs, AMessageBoxInsideADialogIsAnswered) {
    TrialDialog dialog;
    dialog.asksQuestion = true;
    run(dialog, "; a comment\n@click 1013\n@answer 2\n@answer 7\n@click 1\n");
    EXPECT_EQ(dialog.answer, IDNO);
    EXPECT_NE(shown().find(L"提示: 真的吗？"), std::wstring::npos);
    EXPECT_NE(failures().find(L"消息框“提示”没有答案 2；控件: 6 按钮 是(Y), 7 按钮 否(N)"),
              std::wstring::npos);
}

TEST_F(Dialogs, AnUnansweredDialogEndsTheScript) {
    lines("1,2\n@click 1\n");
    TrialDialog dialog;
    EXPECT_EQ(dialog.DoModal(), IDCANCEL);
    const std::wstring told = failures();
    EXPECT_NE(
        told.find(L"对话框“试验”没有应答，脚本到此结束。控件: 1001 编辑框, 1002 编辑框, 1003 复选框 有效(V)"),
        std::wstring::npos)
        << host::toUtf8(told);
    EXPECT_TRUE(allRead());
    lines("");
    EXPECT_EQ(AfxMessageBox(L"没有图签", MB_OK), IDCANCEL);
    EXPECT_NE(failures().find(L"消息框“提示”没有应答"), std::wstring::npos);
    host::inputStream().setUser(nullptr); // nobody at all: it is told and goes on
    EXPECT_EQ(AfxMessageBox(L"没有图签", MB_YESNO), IDNO);
    EXPECT_EQ(failures(), L"");
}

TEST_F(Dialogs, ADialogBesideTheDrawingTakesItsLinesWhereverThereIsAQuestion) {
    TrialDialog dialog;
    ASSERT_TRUE(dialog.Create(100));
    dialog.ShowWindow(SW_SHOW);
    lines("@set 1001 4\n@10,20\n@click 2\nnext\n");
    host::InputRequest request;
    EXPECT_EQ(host::inputStream().askUser(L"点:", request).text, L"@10,20"); // a relative point
    CString text;
    dialog.GetDlgItemText(1001, text);
    EXPECT_EQ(text, L"4");
    EXPECT_EQ(host::inputStream().askUser(L"点:", request).text, L"next");
    EXPECT_FALSE(dialog.IsWindowVisible());
    dialog.DestroyWindow();
    lines("@click 2\n"); // none is open: an answer like any other
    EXPECT_EQ(host::inputStream().askUser(L"点:", request).text, L"@click");
}

TEST_F(Dialogs, FileDialogsTakeNames) {
    lines("@set 1148 \"a.dwg\" \"b 2.dwg\"\n@click 1\n@set 1148 表\n@click 1\n@click 2\n");
    CFileDialog several(TRUE, L"dwg", nullptr, OFN_ALLOWMULTISELECT);
    ASSERT_EQ(several.DoModal(), IDOK);
    std::vector<CString> names;
    for (POSITION at = several.GetStartPosition(); at != nullptr;) {
        const CString path = several.GetNextPathName(at);
        names.push_back(path.Mid(path.ReverseFind(L'\\') + 1));
    }
    EXPECT_EQ(names, (std::vector<CString>{L"a.dwg", L"b 2.dwg"}));
    CFileDialog save(FALSE, L"txt");
    ASSERT_EQ(save.DoModal(), IDOK);
    EXPECT_EQ(save.GetFileName(), L"表.txt");
    EXPECT_EQ(save.GetFileTitle(), L"表");
    CFileDialog none(TRUE);
    EXPECT_EQ(none.DoModal(), IDCANCEL);
    EXPECT_EQ(none.GetPathName(), L"");
}

TEST_F(Dialogs, AHandlersExceptionArrivesAtItsCaller) {
    class Throwing : public TrialDialog {
        void OnOK() override { throw std::runtime_error("bad"); }
    } dialog;
    lines("@click 1\n");
    EXPECT_THROW(dialog.DoModal(), std::runtime_error);
    EXPECT_EQ(dialog.m_hWnd, nullptr);
    run(dialog, "@click 2\n", IDCANCEL);
}

TEST_F(Dialogs, ADialogEndedAtItsBeginningIsNotShown) {
    class Ended : public CDialog {
    public:
        Ended() : CDialog(100) {}
        BOOL OnInitDialog() override { return EndDialog(7), FALSE; }
    } dialog;
    lines("@click 1\n");
    EXPECT_EQ(dialog.DoModal(), 7);
    EXPECT_FALSE(allRead());
    EXPECT_EQ(CDialog(999).DoModal(), -1);
    EXPECT_EQ(failures(), L"");
}

} // namespace
