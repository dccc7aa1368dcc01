// Panels, menus and views of the real window: what is edited there is a step of undo in the drawing, and what
// goes wrong in an event ends nothing.
#include "tests/app/windowdriver.h"
#include "tests/temporaryfolder.h"

#include "host/db/entities/text.h"
#include "host/formats/formats.h"
#include "host/win/win.h"

#include <QAbstractButton>
#include <QLineEdit>
#include <QMenu>
#include <algorithm>
#include <gtest/gtest.h>
#include <stdexcept>

namespace {

using Driver = WindowDriver;

/// A line, a circle and a text on layer 0.
void drawKinds(Driver& d) {
    d.type(QStringLiteral("LINE 0,0 40,0\n\n"));
    d.type(QStringLiteral("CIRCLE 60,10 5\n"));
    d.type(QStringLiteral("TEXT 0,20 3 0 abc\n\n"));
}

QTreeWidgetItem* rowOf(QTreeWidget& table, const QString& name) {
    const QList<QTreeWidgetItem*> found = table.findItems(name, Qt::MatchExactly | Qt::MatchRecursive);
    return found.isEmpty() ? nullptr : found.first();
}

app::PropertyPanel* propertyPanel(Driver& d) {
    return dynamic_cast<app::PropertyPanel*>(
        d.window().findChild<QDockWidget*>(QStringLiteral("propertyPanel")));
}

/// Types a value over a property, as the editor of the row does.
void edit(Driver& d, const char* name, const char* value) {
    auto* panel = propertyPanel(d);
    QTreeWidgetItem* row = rowOf(panel->table(), QString::fromUtf8(name));
    ASSERT_NE(row, nullptr) << name;
    row->setText(1, QString::fromUtf8(value));
}

QString valueOf(Driver& d, const char* name) {
    auto* panel = propertyPanel(d);
    const QTreeWidgetItem* row = rowOf(panel->table(), QString::fromUtf8(name));
    return row != nullptr ? row->text(1) : QString();
}

/// Shows the properties of one kind of what is chosen.
void chooseKind(Driver& d, const char* kind) {
    auto* kinds = propertyPanel(d)->findChild<QComboBox*>();
    const int index = kinds->findText(QString::fromUtf8(kind), Qt::MatchStartsWith);
    ASSERT_GE(index, 0) << kind;
    kinds->setCurrentIndex(index);
    emit kinds->activated(index);
}

template <class Kind>
const Kind& first() {
    for (AcDbEntity* entity : entities()) {
        if (auto* found = Kind::cast(entity)) {
            return *found;
        }
    }
    throw std::runtime_error("not drawn");
}

double radius() {
    const host::ReadAccess access(first<AcDbCircle>());
    return first<AcDbCircle>().radius();
}

int colorOf(std::size_t index) {
    const host::ReadAccess access(*entities().at(index));
    return entities().at(index)->colorIndex();
}

const AcDbLayerTableRecord& layerZero() {
    return *host::peek<AcDbLayerTableRecord>(acdbCurDwg()->layerZero());
}

/// A drawing whose stored view has this centre and height, with a circle at 1000,1000.
std::string drawingWithView(const TemporaryFolder& folder, const std::string& centre,
                            const std::string& height) {
    AcDbDatabase database(true);
    auto* circle = new AcDbCircle({1000, 1000, 0}, AcGeVector3d::kZAxis, 10);
    AcDbBlockTableRecord* space = nullptr;
    EXPECT_EQ(acdbOpenObject(space, database.currentSpaceId(), AcDb::kForWrite), Acad::eOk);
    space->appendAcDbEntity(circle);
    circle->close();
    space->close();
    std::wstring message;
    const std::filesystem::path file = folder / "view.dxf";
    EXPECT_EQ(host::fileFormats().write(database, host::toWindowsPath(file), {}, message), Acad::eOk);
    std::string text = readFile(file);
    const auto put = [&](const std::string& code, const std::string& value) {
        const std::size_t record = text.find("*Active");
        const std::size_t at = text.find("\n " + code + "\r\n", record);
        ASSERT_NE(at, std::string::npos) << code;
        const std::size_t from = text.find('\n', at + 1) + 1;
        text.replace(from, text.find('\r', from) - from, value);
    };
    put("12", centre);
    put("22", centre);
    put("40", height);
    writeFile(file, text);
    return file.string();
}

/// Fails whenever it is drawn.
class Undrawable final : public AcDbLine {
public:
    using AcDbLine::AcDbLine;
    Adesk::Boolean subWorldDraw(AcGiWorldDraw*) override { throw std::runtime_error("broken"); }
};

} // namespace

TEST(PropertyPanel, EditsAllOfTheChoiceInOneStep) {
    Driver driver;
    driver.run({[](Driver& d) {
                    d.window().trigger("@properties", false);
                    drawKinds(d);
                },
                [](Driver& d) { d.window().trigger("@selectall", false); },
                [](Driver& d) {
                    EXPECT_TRUE(valueOf(d, "半径").isEmpty()) << "only the circle has one";
                    EXPECT_EQ(valueOf(d, "图层"), "0");
                    edit(d, "颜色", "红");
                },
                [](Driver& d) {
                    EXPECT_EQ(colorOf(0) + colorOf(1) + colorOf(2), 3);
                    EXPECT_EQ(host::impliedSelection().size(), 3u) << "the choice stays";
                    chooseKind(d, "圆 (1)");
                    EXPECT_EQ(valueOf(d, "半径").toDouble(), 5);
                    edit(d, "半径", "8");
                },
                [](Driver& d) {
                    EXPECT_DOUBLE_EQ(radius(), 8);
                    edit(d, "半径", "x");
                },
                [](Driver& d) {
                    EXPECT_DOUBLE_EQ(radius(), 8);
                    chooseKind(d, "单行文字");
                    edit(d, "内容", "a\"b\\c");
                },
                [](Driver& d) {
                    const host::ReadAccess access(first<AcDbText>());
                    EXPECT_STREQ(AcString(first<AcDbText>().textStringConst()).kwszPtr(), L"a\"b\\c");
                    d.window().trigger("_.U", false);
                },
                [](Driver& d) { d.window().trigger("_.U", false); },
                [](Driver& d) {
                    EXPECT_DOUBLE_EQ(radius(), 5) << "what could not be read is no step";
                    d.window().trigger("_.U", false);
                },
                [](Driver&) {
                    EXPECT_EQ(colorOf(0), AcCmEntityColor::kACIbyLayer);
                    EXPECT_EQ(entities().size(), 3u);
                }});
}

TEST(LayerPanel, ItsSwitchesAreStepsOfUndo) {
    Driver driver;
    const auto click = [](Driver& d, int column) {
        auto* table =
            d.window().findChild<QDockWidget*>(QStringLiteral("layerPanel"))->findChild<QTreeWidget*>();
        ASSERT_EQ(table->topLevelItemCount(), 1);
        emit table->itemClicked(table->topLevelItem(0), column);
    };
    driver.run({[](Driver& d) { d.window().trigger("@layers", false); }, [&](Driver& d) { click(d, 3); },
                [&](Driver& d) {
                    EXPECT_TRUE(layerZero().isLocked());
                    click(d, 1);
                },
                [&](Driver& d) {
                    EXPECT_TRUE(layerZero().isOff());
                    d.window().trigger("_.U", false);
                },
                [](Driver& d) {
                    EXPECT_FALSE(layerZero().isOff());
                    EXPECT_TRUE(layerZero().isLocked());
                    d.window().trigger("_.U", false);
                },
                [](Driver&) { EXPECT_FALSE(layerZero().isLocked()); }});
}

TEST(LayerPanel, ASwitchOfChosenRowsMeansThemAll) {
    constexpr int nameColumn = 0, lockColumn = 3;
    Driver driver;
    const auto table = [](Driver& d) {
        return d.window().findChild<QDockWidget*>(QStringLiteral("layerPanel"))->findChild<QTreeWidget*>();
    };
    // As by hand, with a hand that is not quite still.
    const auto click = [&](Driver& d, const char* layer, int column, Qt::KeyboardModifiers modifiers = {}) {
        QTreeWidget& rows = *table(d);
        QTreeWidgetItem* row = rowOf(rows, QString::fromUtf8(layer));
        ASSERT_NE(row, nullptr) << layer;
        const QRect cell = rows.visualRect(rows.indexFromItem(row, column));
        const auto send = [&](QEvent::Type type, QPoint at, Qt::MouseButton button, Qt::MouseButtons held) {
            QMouseEvent event(type, at, rows.viewport()->mapToGlobal(at), button, held, modifiers);
            QApplication::sendEvent(rows.viewport(), &event);
        };
        const QPoint at = cell.center();
        send(QEvent::MouseButtonPress, at, Qt::LeftButton, Qt::LeftButton);
        send(QEvent::MouseMove, at + QPoint(1, 1), Qt::NoButton, Qt::LeftButton);
        send(QEvent::MouseButtonRelease, at + QPoint(1, 1), Qt::LeftButton, Qt::NoButton);
    };
    const auto chosen = [&](Driver& d) {
        QString names;
        for (const QTreeWidgetItem* row : table(d)->selectedItems()) {
            names += row->text(nameColumn);
        }
        std::ranges::sort(names);
        return names.toStdString();
    };
    const auto locked = [] {
        std::string names;
        for (AcDbStub* stub : host::peek<AcDbLayerTable>(acdbCurDwg()->layerTableId())->records()) {
            const auto* layer = host::peek<AcDbLayerTableRecord>(AcDbObjectId(stub));
            if (layer != nullptr && layer->isLocked()) {
                names += host::toUtf8(layer->name().kwszPtr());
            }
        }
        std::ranges::sort(names);
        return names;
    };
    driver.run({[](Driver& d) { d.type(QStringLiteral("-LAYER N A,B,C\n\n")); },
                [](Driver& d) { d.window().trigger("@layers", false); },
                [&](Driver& d) {
                    click(d, "A", nameColumn);
                    click(d, "C", nameColumn, Qt::ControlModifier);
                    EXPECT_EQ(chosen(d), "AC");
                    click(d, "A", lockColumn, Qt::ControlModifier);
                },
                [&](Driver& d) {
                    EXPECT_EQ(locked(), "AC");
                    EXPECT_EQ(chosen(d), "AC");
                    click(d, "C", lockColumn);
                },
                [&](Driver& d) {
                    EXPECT_EQ(locked(), "");
                    EXPECT_EQ(chosen(d), "AC");
                    click(d, "B", lockColumn);
                },
                [&](Driver& d) {
                    EXPECT_EQ(locked(), "B");
                    EXPECT_EQ(chosen(d), "B") << "a row that was not chosen is meant alone";
                    click(d, "0", lockColumn, Qt::ControlModifier);
                },
                [&](Driver& d) {
                    EXPECT_EQ(locked(), "0B");
                    EXPECT_EQ(chosen(d), "0B");
                    d.window().trigger("_.U", false);
                },
                [&](Driver&) { EXPECT_EQ(locked(), "B") << "one step of undo"; }});
}

TEST(View, TheStoredOneIsShownWhenItShowsSomething) {
    const TemporaryFolder folder;
    Driver driver;
    driver.run({[&](Driver& d) {
                    ASSERT_TRUE(d.window().openFile(
                        QString::fromStdString(drawingWithView(folder, "990.0", "80.0"))));
                    d.window().windowInput().restart();
                },
                [&](Driver& d) {
                    EXPECT_DOUBLE_EQ(d.canvas().map().centre.x, 990);
                    EXPECT_GE(d.canvas().map().unitsPerPixel * d.canvas().map().height, 80 - 1e-9);
                    d.look(1005, 1005, 60);
                    ASSERT_TRUE(d.window().save(false));
                    d.window().trigger("@new", false);
                },
                [&](Driver& d) { // left at another place
                    ASSERT_TRUE(d.window().openFile(QString::fromStdString((folder / "view.dxf").string())));
                    d.window().windowInput().restart();
                },
                [&](Driver& d) {
                    EXPECT_DOUBLE_EQ(d.canvas().map().centre.x, 1005);
                    ASSERT_TRUE(
                        d.window().openFile(QString::fromStdString(drawingWithView(folder, "0.0", "300.0"))));
                    d.window().windowInput().restart();
                },
                [](Driver& d) { // nothing is there: all of the drawing
                    EXPECT_NEAR(d.canvas().map().centre.x, 1000, 1);
                    EXPECT_NEAR(d.canvas().map().unitsPerPixel * d.canvas().map().height, 20, 2);
                }});
}

TEST(View, PreviousGoesBackInItsOwnDrawing) {
    Driver driver;
    static double before;
    driver.run({[](Driver& d) {
                    before = d.canvas().map().unitsPerPixel;
                    d.canvas().browse();
                    d.canvas().zoomAt(10, 10, 2);
                    d.canvas().browse();
                    d.canvas().zoomAt(10, 10, 2);
                    d.window().trigger("@new", false);
                },
                [](Driver& d) { d.type(QStringLiteral("ZOOM P\n")); },
                [](Driver& d) {
                    EXPECT_TRUE(
                        d.window().commandLine().history().contains(QStringLiteral("没有上一个视图")));
                    acDocManagerPtr()->activateDocument(acDocManagerPtr()->documents().front().get());
                    d.window().windowInput().restart();
                },
                [](Driver& d) {
                    EXPECT_NEAR(d.canvas().map().unitsPerPixel, before / 4, before * 1e-9);
                    d.type(QStringLiteral("ZOOM P\n"));
                },
                [](Driver& d) { // a run of zooming is one
                    EXPECT_NEAR(d.canvas().map().unitsPerPixel, before, before * 1e-9);
                }});
}

TEST(View, ASlideStandsInThePlaceOfTheDrawingUntilRedraw) {
    const TemporaryFolder folder;
    const QString file = QString::fromStdString((folder / "a.sld").string());
    Driver driver;
    static QImage drawn;
    const auto lit = [](const QImage& image) {
        int count = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                count += image.pixel(x, y) != image.pixel(0, 0) ? 1 : 0;
            }
        }
        return count;
    };
    driver.run({[&](Driver& d) {
                    d.type(QStringLiteral("CIRCLE 0,0 20\n"));
                    d.type(QStringLiteral("MSLIDE\n") + file + QLatin1Char('\n'));
                },
                [&](Driver& d) { d.type(QStringLiteral("ERASE ALL\n\n")); },
                [&](Driver& d) {
                    EXPECT_EQ(lit(d.canvas().picture()), 0);
                    d.type(QStringLiteral("VSLIDE\n") + file + QLatin1Char('\n'));
                },
                [&](Driver& d) {
                    EXPECT_GT(lit(d.canvas().picture()), 200);
                    d.type(QStringLiteral("REDRAW\n"));
                },
                [&](Driver& d) { EXPECT_EQ(lit(d.canvas().picture()), 0); }});
}

TEST(Faults, OfEventsAndDrawingsAreToldAndEndNothing) {
    Driver driver;
    driver.run(
        {[](Driver& d) { QTimer::singleShot(0, &d.canvas(), [] { throw std::runtime_error("torn"); }); },
         [](Driver& d) { d.type(QStringLiteral("LINE 0,0 40,0\n\n")); },
         [](Driver& d) {
             auto* broken = new Undrawable({0, 5, 0}, {40, 5, 0});
             AcDbBlockTableRecord* space = nullptr;
             ASSERT_EQ(acdbOpenObject(space, acdbCurDwg()->currentSpaceId(), AcDb::kForWrite), Acad::eOk);
             space->appendAcDbEntity(broken);
             broken->close();
             space->close();
             d.canvas().picture();
             d.canvas().regenerate();
             d.canvas().picture();
         },
         [](Driver& d) {
             const QString history = d.window().commandLine().history();
             EXPECT_TRUE(history.contains(QStringLiteral("窗口出错: torn")));
             EXPECT_EQ(history.count(QStringLiteral("无法显示对象")), 1) << "told once";
             EXPECT_EQ(entities().size(), 2u);
         }});
}

TEST(ContextMenu, OffersWhatCanBeDoneAtThePromptAndInACommand) {
    Driver driver;
    host::setSystemVariable(L"SHORTCUTMENU", 11);
    QStringList offered;
    QTimer chooses;
    chooses.setInterval(1);
    QString wanted;
    QObject::connect(&chooses, &QTimer::timeout, [&] {
        if (auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget())) {
            offered.clear();
            for (QAction* action : menu->actions()) {
                offered.append(action->text());
                if (action->text().startsWith(wanted)) {
                    action->trigger();
                }
            }
            menu->close();
        }
    });
    chooses.start();
    driver.run({[](Driver& d) { d.type(QStringLiteral("LINE 0,0 10,0\n\n")); },
                [&](Driver& d) {
                    wanted = QStringLiteral("重复 LINE");
                    d.rightClick();
                },
                [&](Driver& d) {
                    EXPECT_FALSE(d.window().windowInput().isIdle());
                    d.type(QStringLiteral("1,1 2,2 3,1\n"));
                },
                [&](Driver& d) {
                    wanted = QStringLiteral("闭合(C)");
                    d.rightClick();
                },
                [&](Driver& d) {
                    EXPECT_TRUE(offered.contains(QStringLiteral("取消(&C)")));
                    EXPECT_TRUE(d.window().windowInput().isIdle());
                    EXPECT_EQ(entities().size(), 4u);
                }});
    host::setSystemVariable(L"SHORTCUTMENU", 27);
}

TEST(LayoutTabs, ShowTheDrawingsLayoutsAndChooseOne) {
    Driver driver;
    app::LayoutBar& tabs = driver.window().layouts();
    const auto click = [&](int index) { emit tabs.tabBarClicked(index); };
    driver.run({[](Driver& d) { d.type(QStringLiteral("LAYOUT N\n\"平 面 图\"\n")); },
                [&](Driver&) {
                    EXPECT_EQ(tabs.currentIndex(), 0);
                    EXPECT_EQ(tabs.tabText(tabs.count() - 1), QStringLiteral("平 面 图"));
                    click(tabs.count() - 1);
                },
                [&](Driver& d) {
                    EXPECT_EQ(host::systemVariableText(L"CTAB"), L"平 面 图");
                    EXPECT_EQ(tabs.currentIndex(), tabs.count() - 1);
                    d.type(QStringLiteral("LAYOUT D\n\"平 面 图\"\n"));
                },
                [&](Driver&) {
                    EXPECT_FALSE(tabs.tabText(tabs.count() - 1).contains(QStringLiteral("平")));
                    click(0);
                },
                [](Driver&) { EXPECT_EQ(host::systemVariableText(L"CTAB"), L"Model"); }});
}
