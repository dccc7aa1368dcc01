#include "app/chrome/style.h"

#include <QPalette>
#include <QWidget>

namespace app {

void applyStyle(QWidget& window) {
    QPalette palette;
    const QColor plate(46, 52, 60), field(34, 40, 47), text(222, 227, 232), dim(128, 136, 145),
        accent(64, 140, 220);
    palette.setColor(QPalette::Window, plate);
    palette.setColor(QPalette::WindowText, text);
    palette.setColor(QPalette::Base, field);
    palette.setColor(QPalette::AlternateBase, QColor(40, 46, 53));
    palette.setColor(QPalette::Text, text);
    palette.setColor(QPalette::Button, QColor(56, 63, 72));
    palette.setColor(QPalette::ButtonText, text);
    palette.setColor(QPalette::ToolTipBase, QColor(60, 68, 77));
    palette.setColor(QPalette::ToolTipText, text);
    palette.setColor(QPalette::PlaceholderText, dim);
    palette.setColor(QPalette::Highlight, accent);
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, QColor(108, 182, 255));
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, dim);
    }
    window.setPalette(palette);
    QFont font = window.font();
    font.setFamilies({QStringLiteral("Noto Sans CJK SC"), QStringLiteral("Microsoft YaHei"), font.family()});
    window.setFont(font);
    window.setStyleSheet(QStringLiteral(
        // Only parts of the window are named: dialogs are its children too, and keep their own look.
        "QToolBar { border: 0; spacing: 1px; padding: 2px; }"
        "QToolBar::separator { background: #4a525c; width: 1px; height: 1px; margin: 4px; }"
        "QToolBar QToolButton, QStatusBar QToolButton, QTabBar QToolButton { border: 1px solid transparent; "
        "border-radius: 3px; padding: 2px; color: #dee3e8; }"
        "QToolBar QToolButton:hover, QStatusBar QToolButton:hover { background: #465260; border-color: "
        "#5a6878; }"
        "QToolBar QToolButton:pressed { background: #2f5f92; }"
        "QStatusBar { background: #262c33; }"
        "QStatusBar::item { border: 0; }"
        "QStatusBar QLabel { color: #dee3e8; }"
        "QStatusBar QToolButton { padding: 1px 6px; color: #98a1ab; }"
        "QStatusBar QToolButton:checked { background: #2b5580; color: #ffffff; border-color: #3c73a8; }"
        "QMenu { background: #2e343c; color: #dee3e8; border: 1px solid #4a525c; padding: 3px; }"
        "QMenu::item { padding: 4px 26px 4px 8px; border-radius: 3px; }"
        "QMenu::item:selected { background: #3c6ea0; }"
        "QMenu::item:disabled { color: #7b838c; }"
        "QMenu::separator { height: 1px; background: #4a525c; margin: 3px 6px; }"
        "QMenuBar { background: #262c33; color: #dee3e8; padding: 1px; }"
        "QMenuBar::item { padding: 4px 9px; background: transparent; }"
        "QMenuBar::item:selected { background: #3d4854; }"
        "QToolTip { background: #3c444d; color: #dee3e8; border: 1px solid #5a6878; padding: 2px 4px; }"
        "QToolBar QComboBox, QDockWidget QComboBox { background: #383f48; color: #dee3e8; border: 1px solid "
        "#4a525c; border-radius: 3px; padding: 2px 6px; }"
        "QToolBar QComboBox:hover { border-color: #6b7a8a; }"
        "QToolBar QComboBox::drop-down, QDockWidget QComboBox::drop-down { border: 0; width: 18px; }"
        "QToolBar QComboBox QAbstractItemView, QDockWidget QComboBox QAbstractItemView { background: "
        "#2e343c; "
        "color: #dee3e8; selection-background-color: #3c6ea0; }"
        "QDockWidget { color: #dee3e8; }"
        "QDockWidget::title { background: #262c33; padding: 4px 6px; }"
        "QDockWidget QLabel { color: #dee3e8; }"
        "QDockWidget QTreeWidget { background: #22282f; alternate-background-color: #282e35; color: #dee3e8; "
        "border: 1px solid #3a424b; }"
        "QDockWidget QTreeWidget::item { padding: 2px 0; }"
        "QDockWidget QTreeWidget::item:selected { background: #3c6ea0; color: #ffffff; }"
        "QDockWidget QHeaderView::section { background: #383f48; color: #dee3e8; border: 0; padding: 3px; }"
        "QDockWidget QPushButton { background: #383f48; color: #dee3e8; border: 1px solid #4a525c; padding: "
        "3px 10px; border-radius: 3px; }"
        "QDockWidget QPushButton:hover { background: #465260; }"
        "QDockWidget QLineEdit { background: #2b323a; color: #dee3e8; border: 1px solid #434c57; }"
        "QDockWidget QScrollBar { background: #262c33; border: 0; }"
        "QDockWidget QScrollBar:vertical { width: 12px; }"
        "QDockWidget QScrollBar:horizontal { height: 12px; }"
        "QDockWidget QScrollBar::handle { background: #4a525c; border-radius: 4px; margin: 2px; }"
        "QDockWidget QScrollBar::handle:vertical { min-height: 24px; }"
        "QDockWidget QScrollBar::handle:horizontal { min-width: 24px; }"
        "QDockWidget QScrollBar::handle:hover { background: #5f6b78; }"
        "QDockWidget QScrollBar::add-line, QDockWidget QScrollBar::sub-line { width: 0; height: 0; }"
        "QDockWidget QScrollBar::add-page, QDockWidget QScrollBar::sub-page { background: none; }"
        "#documentTabs { background: #262c33; }"
        "#documentTabs::tab { background: #2e343c; color: #aab2bb; padding: 4px 14px; border: 0; "
        "border-right: 1px solid #22272d; }"
        "#documentTabs::tab:selected { background: #3a434d; color: #ffffff; border-top: 2px solid #408cdc; }"
        "#layoutTabs { background: #262c33; }"
        "#layoutTabs::tab { background: #2e343c; color: #aab2bb; padding: 2px 14px; border: 0; "
        "border-right: 1px solid #22272d; }"
        "#layoutTabs::tab:selected { background: #3a434d; color: #ffffff; border-bottom: 2px solid #408cdc; }"
        "#commandLine { background: #22282f; }"
        "#history { background: #22282f; color: #b9c1c9; }"
        "#commandEdit { background: #2b323a; color: #dee3e8; border: 1px solid #434c57; border-radius: 2px; "
        "padding: 2px 4px; }"
        "#commandEdit:focus { border-color: #408cdc; }"
        "#suggestions { background: #2e343c; color: #dee3e8; border: 1px solid #5a6878; border-radius: 3px; "
        "padding: 1px; }"
        "#suggestions::item { padding: 2px 6px; }"
        "#suggestions::item:selected { background: #3c6ea0; }"
        "QMainWindow::separator { background: #262c33; width: 3px; height: 3px; }"));
}

} // namespace app
