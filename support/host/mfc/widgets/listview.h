// Lists with columns or with pictures, whose items are their own or asked for.
#pragma once

#include "host/mfc/listctrl.h"
#include "host/mfc/widgets/factory.h"

#include <QAbstractItemView>
#include <QAbstractTableModel>

namespace host {

struct ListItem {
    std::vector<std::wstring> texts;
    int image = -1;
    LPARAM data = 0;
};
struct ListColumn {
    std::wstring heading;
    int format = LVCFMT_LEFT;
};

class ListViewWindow;

class ListModel : public QAbstractTableModel {
public:
    explicit ListModel(ListViewWindow& window) : window_(window) {}

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    std::vector<ListItem> items;
    std::vector<ListColumn> columns;
    int askedCount = 0; // of a list that asks

    // Changes through here tell the view.
    void insert(int at, ListItem item);
    void remove(int at);
    void clear();
    void setCount(int count);
    void changed(int first, int last);
    void insertColumn(int at, ListColumn column);
    void removeColumn(int at);

private:
    ListViewWindow& window_;
};

class ListViewWindow : public HWND__ {
public:
    ListViewWindow(QAbstractItemView* made, const WindowSpec& spec);
    ~ListViewWindow() override;

    QAbstractItemView& view() const { return static_cast<QAbstractItemView&>(*widget); }
    ListModel& model() { return model_; }
    const ListModel& model() const { return model_; }
    bool asksForItems() const { return (style & LVS_OWNERDATA) != 0; }
    bool isReport() const { return (style & LVS_TYPEMASK) == LVS_REPORT; }
    std::wstring itemText(int row, int column) const;
    bool isSelected(int row) const;
    std::vector<int> selected() const;
    void setState(int row, UINT state, UINT mask);
    int focused() const;
    void setFocused(int row);
    void setCellSize(QSize size);
    void setColumnWidth(int column, int width);
    int columnWidth(int column) const;
    void setImages(CImageList* images) { images_ = images; }
    CImageList* images() const { return images_; }
    void forget(int first, int last); // before rows go: nothing else is selected in their place
    void setExtended(DWORD style);
    // What the class draws of an item; true when that is all of it.
    bool drawByClass(QPainter& painter, const QRect& rect, int row, bool selected);

    std::wstring kind() const override { return isReport() ? L"列表" : L"图片列表"; }
    LRESULT defaultProc(UINT message, WPARAM wParam, LPARAM lParam) override;
    QPoint contextPlace() const override; // on the focused row
    std::wstring scriptSet(const std::wstring& value) override;
    std::wstring scriptSelect(const std::vector<int>& items) override;
    std::wstring scriptClick() override;
    std::wstring scriptGet() const override;

    DWORD extended = 0;
    QSize cell{100, 80};
    COLORREF backColor = 0xFFFFFF;

protected:
    bool filter(QEvent* event) override;
    bool tellRightClick(QPoint onScreen) override;

private:
    void selectionChanged(const class QItemSelection& now, const QItemSelection& before);
    void activate(UINT code, int row);
    ListModel model_;
    CImageList* images_ = nullptr;
};

} // namespace host
