// The suite's controls in a dialog that a script works: numbers, tables, controls that follow their sides.
#include "restools/gridctrl.h"
#include "restools/numedit.h"
#include "restools/resizedialog.h"
#include "restools/tipwnd.h"
#include "tests/module/sessionfixture.h"

#include <limits>

extern "C" {
extern const std::byte qdvResourcesBegin[], qdvResourcesEnd[];
}

namespace {

/// Ticks its last column by clicks, as tables of fields do.
class TickingGrid : public CGridCtrl {
public:
    int drawn = 0;

protected:
    bool DrawCell(CDC& context, int row, int column, const CRect& rect) override {
        ++drawn;
        return CGridCtrl::DrawCell(context, row, column, rect);
    }
    bool FillCell(int row, int column, const CString& text) override {
        if (column == 2 && row > 0 && (text == L"0" || text == L"1")) {
            return SetItemData(row, column, _wtoi(text));
        }
        return CGridCtrl::FillCell(row, column, text);
    }
};

class ControlsDialog : public CResizeDialog {
public:
    ControlsDialog() : CResizeDialog(300) {}

    CNumEdit number;
    TickingGrid grid;
    std::function<void()> atOk;
    std::vector<CString> events;

protected:
    DECLARE_MESSAGE_MAP()
    void DoDataExchange(CDataExchange* exchange) override {
        CResizeDialog::DoDataExchange(exchange);
        DDX_Control(exchange, 301, number);
        DDX_Control(exchange, 302, grid);
    }
    BOOL OnInitDialog() override {
        CResizeDialog::OnInitDialog();
        Anchor(301, left | right);
        Anchor(302, left | top | right | bottom);
        Anchor(IDOK, right | bottom);
        number.SetRange(10.0, 0.1);
        grid.SetRowCount(4);
        grid.SetColumnCount(3);
        grid.SetFixedRowCount(1);
        grid.SetFixedColumnCount(1);
        grid.SetItemText(0, 1, L"输入数据");
        grid.SetItemText(1, 0, L"设计");
        grid.SetItemReadOnly(2, 1);
        return TRUE;
    }
    void OnOK() override {
        if (atOk) {
            atOk();
        }
        CResizeDialog::OnOK();
    }
    void OnCell(NMHDR* header, LRESULT*) {
        const auto& cell = *reinterpret_cast<NM_GRIDVIEW*>(header);
        CString text;
        text.Format(L"%d,%d", cell.iRow, cell.iColumn);
        events.push_back(text);
    }
};

BEGIN_MESSAGE_MAP(ControlsDialog, CResizeDialog)
ON_NOTIFY(GVN_ENDLABELEDIT, 302, &ControlsDialog::OnCell)
END_MESSAGE_MAP()

class ControlsTest : public SessionTest {
protected:
    void SetUp() override {
        SessionTest::SetUp();
        host::setProgramResources({qdvResourcesBegin, qdvResourcesEnd});
    }
    /// Runs the dialog on the lines; what was shown.
    std::wstring run(ControlsDialog& dialog, const std::string& lines) {
        std::istringstream script(lines);
        host::TypedInput user(script);
        host::inputStream().setUser(&user);
        EXPECT_EQ(dialog.DoModal(), IDOK);
        host::inputStream().setUser(nullptr);
        return takeShown();
    }
};

} // namespace

TEST_F(ControlsTest, NumbersAreReadShownAndRefused) {
    struct Row {
        const char* typed;
        bool valid;
        double value;
    };
    for (const Row& row :
         {Row{"3.5", true, 3.5}, Row{" 2 ", true, 2.0}, Row{"1e1", true, 10.0}, Row{"0.1", true, 0.1},
          Row{"0.05", false, 0.05}, Row{"11", false, 11.0}, Row{"", false, 0.0}, Row{"3x", false, 0.0},
          Row{"0x3", false, 0.0}, Row{"inf", false, 0.0}, Row{"1e999", false, 0.0}}) {
        ControlsDialog dialog;
        dialog.atOk = [&] {
            EXPECT_EQ(dialog.number.IsValid(), row.valid) << row.typed;
            EXPECT_DOUBLE_EQ(dialog.number.GetValue(), row.value) << row.typed;
        };
        run(dialog, std::string("@set 301 ") + row.typed + "\n@click 1\n");
    }
    ControlsDialog dialog;
    std::vector<CString> texts;
    dialog.atOk = [&] {
        for (const double value : {3.5, 2.0, -0.001, 1234567.126, 0.75}) {
            dialog.number.SetValue(value);
            CString text;
            dialog.number.GetWindowText(text);
            texts.push_back(text);
        }
        dialog.number.SetValue(8.64788975);
        EXPECT_EQ(dialog.number.GetValue(), 8.64788975);
        dialog.number.SetWindowText(L"8.6");
        EXPECT_EQ(dialog.number.GetValue(), 8.6);
        dialog.number.SetWindowText(L"20");
        EXPECT_FALSE(dialog.number.Validate(L"字高"));
        dialog.number.SetRange(std::numeric_limits<double>::max(), 0.1);
        dialog.number.SetWindowText(L"0");
        EXPECT_FALSE(dialog.number.Validate(L"字高"));
        dialog.number.SetWindowText(L"1e300");
        EXPECT_TRUE(dialog.number.Validate(L"字高"));
    };
    const std::wstring shown = run(dialog, "@click 1\n@answer 1\n@answer 1\n");
    EXPECT_EQ(texts, (std::vector<CString>{L"3.5", L"2", L"0", L"1234567.13", L"0.75"}));
    EXPECT_NE(shown.find(L"字高应为 0.1 到 10 之间的数。"), std::wstring::npos);
    EXPECT_NE(shown.find(L"字高应为不小于 0.1 的数。"), std::wstring::npos);
}

TEST_F(ControlsTest, ATableIsFilledCellByCell) {
    ControlsDialog dialog;
    CString whole;
    dialog.atOk = [&] { dialog.grid.GetWindowText(whole); };
    const std::wstring shown =
        run(dialog, "@cell 302 1 1 张 三\n@cell 302 1 1 张 三\n@cell 302 3 2 1\n@cell 302 2 1 x\n"
                    "@cell 302 0 1 x\n@cell 302 1 0 x\n@cell 302 9 9 x\n@cell 302 1 a x\n@click 1\n");
    EXPECT_EQ(whole, L"设计\t张 三\t\n\t\t\n\t\t");
    EXPECT_EQ(dialog.events, (std::vector<CString>{L"1,1"})); // the second time nothing changed
    EXPECT_EQ(dialog.grid.GetItemData(3, 2), 1);
    for (const wchar_t* refused : {L"单元格 2,1 不存在或者不能填入“x”", L"单元格 0,1 ", L"单元格 1,0 ",
                                   L"单元格 9,9 ", L"行列号不对"}) {
        EXPECT_NE(shown.find(refused), std::wstring::npos) << host::toUtf8(refused);
    }
}

TEST_F(ControlsTest, ATableIsEditedInPlace) {
    ControlsDialog dialog;
    dialog.atOk = [&] {
        CGridCtrl& grid = dialog.grid;
        EXPECT_FALSE(grid.BeginEdit()); // no cell has the focus
        grid.SetFocusCell(1, 1);
        ASSERT_TRUE(grid.BeginEdit());
        CWnd* edit = grid.GetDlgItem(1);
        ASSERT_NE(edit, nullptr);
        edit->SetWindowText(L"甲");
        edit->SendMessage(WM_KEYDOWN, VK_RETURN);
        EXPECT_EQ(grid.GetItemText(1, 1), L"甲");
        EXPECT_EQ(grid.GetFocusCell(), (CCellID{2, 1}));
        EXPECT_FALSE(grid.BeginEdit()); // read only
        grid.SendMessage(WM_KEYDOWN, VK_DOWN);
        grid.SendMessage(WM_CHAR, L'5');
        edit->SendMessage(WM_KEYDOWN, VK_ESCAPE);
        EXPECT_EQ(grid.GetItemText(3, 1), L"");
        grid.SendMessage(WM_KEYDOWN, VK_DOWN); // stays on the last row
        EXPECT_EQ(grid.GetFocusCell(), (CCellID{3, 1}));
        grid.SendMessage(WM_KEYDOWN, VK_HOME);
        EXPECT_EQ(grid.GetFocusCell(), (CCellID{1, 1}));
        grid.SendMessage(WM_KEYDOWN, VK_DELETE);
        EXPECT_EQ(grid.GetItemText(1, 1), L"");
        // Rows and columns that go take their cells with them; the others keep theirs.
        grid.SetItemText(3, 2, L"末");
        grid.SetColumnCount(4);
        EXPECT_EQ(grid.GetItemText(3, 2), L"末");
        grid.SetRowCount(2);
        grid.SetRowCount(4);
        EXPECT_EQ(grid.GetItemText(3, 2), L"");
        EXPECT_EQ(grid.GetItemText(1, 0), L"设计");
        EXPECT_FALSE(grid.SetItemText(4, 0, L""));
        CRect cell;
        ASSERT_TRUE(grid.GetCellRect(2, 1, cell));
        EXPECT_EQ(grid.GetCellFromPt(cell.CenterPoint()), (CCellID{2, 1}));
        EXPECT_FALSE(grid.GetCellFromPt(CPoint(4000, 4)).IsValid());
    };
    run(dialog, "@shot /dev/null\n@click 1\n");
    EXPECT_GE(dialog.grid.drawn, 12);
}

TEST_F(ControlsTest, ControlsFollowTheirSides) {
    ControlsDialog dialog;
    dialog.atOk = [&] {
        const auto placeOf = [&](int id) {
            CRect place;
            dialog.GetDlgItem(id)->GetWindowRect(place);
            dialog.ScreenToClient(place);
            return place;
        };
        const CRect edit = placeOf(301), grid = placeOf(302), ok = placeOf(IDOK);
        CRect window;
        dialog.GetWindowRect(window);
        dialog.MoveWindow(window.left, window.top, window.Width() + 50, window.Height() + 30);
        EXPECT_EQ(placeOf(301), CRect(edit.left, edit.top, edit.right + 50, edit.bottom));
        EXPECT_EQ(placeOf(302), CRect(grid.left, grid.top, grid.right + 50, grid.bottom + 30));
        EXPECT_EQ(placeOf(IDOK), CRect(ok.left + 50, ok.top + 30, ok.right + 50, ok.bottom + 30));
        // Not smaller than at the beginning.
        dialog.MoveWindow(window.left, window.top, 50, 50);
        CRect smallest;
        dialog.GetWindowRect(smallest);
        EXPECT_EQ(smallest.Size(), window.Size());
    };
    run(dialog, "@click 1\n");
}

TEST_F(ControlsTest, ATipStaysOnTheScreen) {
    CTipWnd tip;
    tip.Show(L"125.0000<30"); // without a window it only keeps its text
    EXPECT_EQ(tip.Text(), L"125.0000<30");
    const CSize screen(800, 600);
    const CRect near = tip.Place(CPoint(100, 100), screen);
    EXPECT_GT(near.left, 100);
    EXPECT_GT(near.top, 100);
    const CRect corner = tip.Place(CPoint(795, 595), screen);
    EXPECT_EQ(corner.Size(), near.Size());
    EXPECT_LT(corner.right, 795);
    EXPECT_LT(corner.bottom, 595);
    EXPECT_GT(near.Width(), 60);
}
