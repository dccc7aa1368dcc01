// Drawing and editing by hand in the real window.
#include "tests/app/windowdriver.h"
#include "tests/temporaryfolder.h"

#include <QAbstractButton>
#include <QClipboard>
#include <QLabel>
#include <QMessageBox>
#include <QMimeData>
#include <atomic>
#include <fstream>
#include <gtest/gtest.h>
#include <thread>

namespace {

using Driver = WindowDriver;

/// Screen pixels are coarser than the drawing's units.
constexpr double aPixel = 0.35;

void expectNear(const AcGePoint3d& point, double x, double y, double tolerance = aPixel) {
    EXPECT_NEAR(point.x, x, tolerance);
    EXPECT_NEAR(point.y, y, tolerance);
}

void start(Driver& driver, const char* command) {
    driver.window().trigger(command, false);
}

std::vector<AcDbObjectId> chosen() {
    return host::impliedSelection().ids;
}

struct Ends {
    AcGePoint3d start, end;
};
Ends lineAt(std::size_t index) {
    const std::vector<AcDbEntity*> all = entities();
    const auto* line = index < all.size() ? AcDbLine::cast(all[index]) : nullptr;
    if (line == nullptr) {
        ADD_FAILURE() << "no line at " << index;
        return {};
    }
    const host::ReadAccess access(*line);
    return {line->startPoint(), line->endPoint()};
}

/// Two lines and a circle.
void drawSome(Driver& driver) {
    driver.type(QStringLiteral("LINE 0,0 40,0\n\n"));
    driver.type(QStringLiteral("LINE 0,20 40,20\n\n"));
    driver.type(QStringLiteral("CIRCLE 60,10 5\n"));
}

} // namespace

TEST(Window, DrawsLinesWithMouseAndKeys) {
    Driver driver;
    driver.run({[](Driver& d) { start(d, "_.LINE"); }, [](Driver& d) { d.click(10, 10); },
                [](Driver& d) { d.click(50, 30); },
                [](Driver& d) {
                    host::setSystemVariable(L"ORTHOMODE", 1);
                    d.move(80, 33);
                },
                [](Driver& d) { d.click(80, 33); },
                [](Driver& d) {
                    host::setSystemVariable(L"ORTHOMODE", 0);
                    d.move(80, 60); // a number is a distance towards the cursor
                    d.type(QStringLiteral("12.5\n"));
                },
                [](Driver& d) { d.rightClick(); }, [](Driver&) { ASSERT_EQ(entities().size(), 3u); },
                [](Driver& d) { d.rightClick(); }, // repeats the command
                [](Driver& d) {
                    EXPECT_STREQ(host::activeCommandNames(*curDoc()).c_str(), L"LINE");
                    d.key(Qt::Key_Escape);
                },
                [](Driver&) {
                    expectNear(lineAt(0).start, 10, 10);
                    expectNear(lineAt(0).end, 50, 30);
                    EXPECT_DOUBLE_EQ(lineAt(1).end.y, lineAt(1).start.y);
                    EXPECT_NEAR(lineAt(2).start.distanceTo(lineAt(2).end), 12.5, 1e-9);
                }});
}

TEST(Window, PolylineIsClosedByItsKeyword) {
    Driver driver;
    driver.run({[](Driver& d) { d.type(QStringLiteral("pl ")); }, [](Driver& d) { d.click(-20, -20); },
                [](Driver& d) { d.click(20, -20); }, [](Driver& d) { d.click(20, 20); },
                [](Driver& d) {
                    const QString prompt = d.window().commandLine().prompt();
                    const auto keywords = app::keywordsOf(prompt);
                    const bool offered =
                        std::any_of(keywords.begin(), keywords.end(),
                                    [](const auto& keyword) { return keyword.typed == "C"; });
                    EXPECT_TRUE(offered) << prompt.toStdString();
                    auto* label = d.window().commandLine().findChild<QLabel*>();
                    emit label->linkActivated(QStringLiteral("C"));
                },
                [](Driver& d) {
                    ASSERT_TRUE(d.window().windowInput().isIdle());
                    const auto* polyline = AcDbPolyline::cast(entities().back());
                    ASSERT_NE(polyline, nullptr);
                    const host::ReadAccess access(*polyline);
                    EXPECT_EQ(polyline->numVerts(), 3u);
                    EXPECT_TRUE(polyline->isClosed());
                }});
}

TEST(Window, ObjectSnapTakesThePointItShows) {
    Driver driver;
    driver.run({[](Driver& d) { drawSome(d); },
                [](Driver& d) {
                    host::setSystemVariable(L"OSMODE", AcDb::kOsMaskEnd | AcDb::kOsMaskCen);
                    start(d, "_.LINE");
                },
                [](Driver& d) {
                    d.move(40.6, 0.7);
                    EXPECT_EQ(d.canvas().aimed().snapKind, AcDb::kOsMaskEnd);
                    d.click(40.6, 0.7);
                },
                [](Driver& d) { d.type(QStringLiteral("_cen\n")); }, [](Driver& d) { d.click(64.6, 11); },
                [](Driver& d) { d.key(Qt::Key_Return); },
                [](Driver&) {
                    expectNear(lineAt(3).start, 40, 0, 1e-9);
                    expectNear(lineAt(3).end, 60, 10, 1e-9);
                    host::setSystemVariable(L"OSMODE", 0);
                }});
}

TEST(Window, RectanglesSelectByTheirDirection) {
    Driver driver;
    driver.run({[](Driver& d) { drawSome(d); },
                [](Driver& d) { d.drag(-5, -5, 50, 12); }, // a window: what lies inside
                [](Driver&) { EXPECT_EQ(chosen().size(), 1u); }, [](Driver& d) { d.key(Qt::Key_Escape); },
                [](Driver& d) {
                    EXPECT_TRUE(chosen().empty());
                    d.drag(56, 25, 30, -5); // a crossing: what it touches
                },
                [](Driver& d) {
                    EXPECT_EQ(chosen().size(), 3u);
                    d.click(40, 20, Qt::ShiftModifier); // taken out again, though a grip lies there
                },
                [](Driver&) { EXPECT_EQ(chosen().size(), 2u); }, [](Driver& d) { d.key(Qt::Key_Escape); },
                [](Driver& d) { d.key(Qt::Key_Escape); }, [](Driver& d) { start(d, "_.ERASE"); },
                [](Driver& d) { d.click(20, 0); },
                [](Driver& d) { d.drag(50, 30, 70, 15); }, // within the command: nothing inside
                [](Driver& d) { d.drag(75, 30, 50, 0); }, [](Driver& d) { d.rightClick(); },
                [](Driver&) {
                    ASSERT_EQ(entities().size(), 1u);
                    expectNear(lineAt(0).start, 0, 20, 1e-9);
                }});
}

TEST(Window, ARectangleBegunAtThePromptEndsWhereACommandBegins) {
    Driver driver;
    driver.run({[](Driver& d) { drawSome(d); }, [](Driver& d) { d.click(-5, 40); },
                [](Driver& d) { d.type(QStringLiteral("LINE\n")); }, [](Driver& d) { d.click(80, -10); },
                [](Driver& d) { d.click(90, -10); }, [](Driver& d) { d.rightClick(); },
                [](Driver&) {
                    EXPECT_TRUE(chosen().empty());
                    EXPECT_EQ(entities().size(), 4u);
                }});
}

TEST(Window, DeleteErasesTheChoiceAndUndoBringsItBack) {
    Driver driver;
    driver.run({[](Driver& d) { drawSome(d); }, [](Driver& d) { d.click(20, 0); },
                [](Driver& d) { d.click(20, 20); },
                [](Driver& d) {
                    EXPECT_EQ(chosen().size(), 2u);
                    d.key(Qt::Key_Delete);
                },
                [](Driver& d) {
                    EXPECT_EQ(entities().size(), 1u);
                    start(d, "_.U");
                },
                [](Driver&) { EXPECT_EQ(entities().size(), 3u); }});
}

TEST(Window, WhatIsChosenGoesOverTheClipboard) {
    Driver driver;
    const auto offers = [] {
        const QMimeData* data = QApplication::clipboard()->mimeData();
        return data != nullptr && data->hasFormat("image/vnd.dxf");
    };
    QApplication::clipboard()->clear();
    driver.run({[](Driver& d) { drawSome(d); }, [](Driver& d) { start(d, "_.LINE"); },
                [&](Driver& d) {
                    d.window().trigger("@copy", false); // a command runs: nothing happens
                    EXPECT_FALSE(offers());
                    EXPECT_TRUE(d.window().windowInput().isAsking());
                    EXPECT_FALSE(d.window().windowInput().isIdle());
                },
                [](Driver& d) { d.key(Qt::Key_Escape); }, [](Driver& d) { d.click(20, 0); },
                [](Driver& d) { d.window().trigger("@copy", false); },
                [&](Driver& d) {
                    EXPECT_TRUE(offers());
                    d.window().trigger("@paste", false);
                },
                [](Driver& d) { d.move(40, -30); },
                [](Driver& d) {
                    EXPECT_EQ(entities().size(), 3u) << "only shown at the cursor";
                    d.click(50, -30);
                },
                [](Driver& d) {
                    ASSERT_EQ(entities().size(), 4u);
                    expectNear(lineAt(3).start, 50, -30, 1e-6);
                    // What another program puts there comes in its place.
                    auto* foreign = new QMimeData;
                    foreign->setData("image/vnd.dxf", "0\nSECTION\n2\nENTITIES\n0\nLINE\n8\n0\n10\n1\n20\n2\n"
                                                      "11\n3\n21\n4\n0\nENDSEC\n0\nEOF\n");
                    QApplication::clipboard()->setMimeData(foreign);
                    start(d, "_.PASTEORIG");
                },
                [](Driver& d) {
                    ASSERT_EQ(entities().size(), 5u);
                    expectNear(lineAt(4).start, 1, 2, 1e-9);
                    d.window().showProperties(false);
                    start(d, "_.PROPERTIES");
                },
                [](Driver& d) { start(d, "_.PROPERTIESCLOSE"); }});
    QApplication::clipboard()->clear();
}

TEST(Window, EscapeRestsAScriptThatRepeatsItself) {
    const TemporaryFolder folder;
    const auto folders = std::exchange(host::supportFolders(), {folder.path()});
    std::ofstream(folder.path() / "loop.scr") << "_.LINE\n0,0\n1,0\n\n_.RSCRIPT\n";
    Driver driver;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&] {
        if (entities().size() > 5) {
            watch.stop();
            driver.key(Qt::Key_Escape);
        }
    });
    watch.start(0);
    std::size_t drawn = 0;
    driver.run({[](Driver& d) { d.type(QStringLiteral("SCRIPT\nloop\n")); },
                [&](Driver& d) {
                    drawn = entities().size();
                    EXPECT_GT(drawn, 5u);
                    d.type(QStringLiteral("CIRCLE\n0,0\n1\n"));
                },
                [&](Driver&) { EXPECT_EQ(entities().size(), drawn + 1) << "the user answers again"; }});
    host::supportFolders() = folders;
}

TEST(Window, EscapeStopsAProgramThatRunsForEver) {
    Driver driver;
    std::atomic<bool> isDone = false;
    std::thread user([&] {
        while (!isDone) {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            QCoreApplication::postEvent(&driver.window().canvas(),
                                        new QKeyEvent(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier));
        }
    });
    driver.run({[](Driver& d) { d.type(QStringLiteral("(progn (setq n 0) (while T (setq n (1+ n))))\n")); },
                [&](Driver&) { isDone = true; },
                [](Driver& d) { d.type(QStringLiteral("(if (> n 0) (command \"_.CIRCLE\" \"0,0\" 1))\n")); },
                [](Driver&) { EXPECT_EQ(entities().size(), 1u); }});
    isDone = true;
    user.join();
}

TEST(Window, AGripIsMovedByTwoClicks) {
    Driver driver;
    driver.run({[](Driver& d) { drawSome(d); }, [](Driver& d) { d.click(25, 0); },
                [](Driver& d) { d.click(40, 0); }, // the grip at the end
                [](Driver& d) {
                    ASSERT_FALSE(d.window().windowInput().isIdle());
                    d.move(50, 40);
                },
                [](Driver& d) {
                    ASSERT_EQ(d.window().windowInput().request()->dragged.size(), 1u);
                    const auto* dragged = AcDbLine::cast(d.window().windowInput().request()->dragged[0]);
                    expectNear(dragged->endPoint(), 50, 40);
                    d.click(50, 40);
                },
                [](Driver& d) {
                    ASSERT_TRUE(d.window().windowInput().isIdle());
                    expectNear(lineAt(0).end, 50, 40);
                    expectNear(lineAt(0).start, 0, 0, 1e-9);
                    EXPECT_EQ(chosen().size(), 1u) << "the choice stays";
                    start(d, "_.U");
                },
                [](Driver&) { expectNear(lineAt(0).end, 40, 0, 1e-9); }});
}

TEST(Window, WhatIsMovedFollowsTheCursor) {
    Driver driver;
    driver.run({[](Driver& d) { drawSome(d); }, [](Driver& d) { start(d, "_.MOVE"); },
                [](Driver& d) { d.type(QStringLiteral("ALL\n\n0,0\n")); }, [](Driver& d) { d.move(10, 15); },
                [](Driver& d) {
                    const auto& dragged = d.window().windowInput().request()->dragged;
                    ASSERT_EQ(dragged.size(), 3u);
                    expectNear(AcDbLine::cast(dragged[0])->startPoint(), 10, 15);
                    expectNear(lineAt(0).start, 0, 0, 1e-9);
                    d.click(10, 15);
                },
                [](Driver& d) {
                    ASSERT_TRUE(d.window().windowInput().isIdle());
                    expectNear(lineAt(0).start, 10, 15);
                }});
}

TEST(Window, AWallOfTheModuleIsDrawnWithClicksAlone) {
    Driver driver(std::vector<std::string>{QDV_MODULE});
    driver.run({[](Driver& d) { start(d, "V7_Enclose"); }, [](Driver& d) { d.click(0, 0); },
                [](Driver& d) { d.move(40, 0); }, [](Driver& d) { d.click(40, 0); },
                [](Driver& d) { d.click(40, 30); }, [](Driver& d) { d.rightClick(); },
                [](Driver& d) { d.click(20, 5); }, [](Driver& d) { d.rightClick(); },
                [](Driver& d) {
                    ASSERT_TRUE(d.window().windowInput().isIdle());
                    ASSERT_EQ(entities().size(), 2u);
                    EXPECT_STREQ(entities()[0]->isA()->name(), L"CQDVBlockPline");
                }});
}

TEST(Window, TransparentZoomGoesBackToTheQuestion) {
    Driver driver;
    driver.run({[](Driver& d) { start(d, "_.LINE"); }, [](Driver& d) { d.click(0, 0); },
                [](Driver& d) { d.window().trigger("_.ZOOM _W", true); },
                [](Driver& d) { d.click(-10, -10); }, [](Driver& d) { d.click(10, 10); },
                [](Driver& d) {
                    EXPECT_LT(d.canvas().map().unitsPerPixel * d.canvas().map().width, 60);
                    EXPECT_NEAR(d.canvas().map().centre.x, 0, 1);
                    d.click(5, 5);
                },
                [](Driver& d) { d.key(Qt::Key_Return); }, [](Driver&) { expectNear(lineAt(0).end, 5, 5); }});
}

TEST(Window, ClosingAsksForWhatIsNotSaved) {
    Driver driver;
    int asked = 0;
    QTimer answers;
    answers.setInterval(1);
    QObject::connect(&answers, &QTimer::timeout, [&] {
        if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            ++asked;
            EXPECT_EQ(box->buttons().size(), 3);
            const QString wanted = asked == 1 ? QStringLiteral("取消") : QStringLiteral("不保存");
            for (QAbstractButton* button : box->buttons()) {
                if (button->text().startsWith(wanted)) {
                    button->click();
                    return;
                }
            }
        }
    });
    driver.run({[&](Driver& d) {
                    EXPECT_TRUE(d.window().mayClose(*curDoc())) << "nothing was changed yet";
                    drawSome(d);
                    answers.start();
                },
                [](Driver& d) { EXPECT_FALSE(d.window().mayClose(*curDoc())); },
                [](Driver& d) { EXPECT_TRUE(d.window().mayClose(*curDoc())); }});
    EXPECT_EQ(asked, 2);
}

TEST(CommandLine, PromptsOfferTheirKeywords) {
    const auto keywords = app::keywordsOf(QStringLiteral("指定下一点或 [圆弧(A)/半宽(H)/放弃(U)] <退出>:"));
    ASSERT_EQ(keywords.size(), 3u);
    EXPECT_EQ(keywords[0].typed, "A");
    EXPECT_EQ(keywords[2].shown, "放弃(U)");
    EXPECT_EQ(app::keywordsOf(QStringLiteral("输入选项 [On/OFf]")).at(1).typed, "OFf");
    EXPECT_TRUE(app::keywordsOf(QStringLiteral("点取:")).empty());
    const QString rich = app::linkedPrompt(QStringLiteral("a<b [是(Y)]"));
    EXPECT_TRUE(rich.contains(QLatin1String("a&lt;b")));
    EXPECT_TRUE(rich.contains(QLatin1String("href=\"Y\"")));
}
