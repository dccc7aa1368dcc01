// The picture follows the drawing: what is kept between two pictures never shows in them.
#include "app/canvas/displaytree.h"
#include "app/canvas/renderer.h"
#include "tests/app/windowdriver.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>

namespace {

using app::FloatBox;

/// The picture of the current drawing as it is made from nothing.
QImage pictureOf(AcDbDatabase& database, const app::ViewMap& view) {
    app::Scene scene(database);
    QImage image(view.width, view.height, QImage::Format_RGB32);
    image.fill(0xFF000000);
    app::CanvasLook look;
    look.background = 0xFF000000;
    EXPECT_TRUE(app::Renderer(scene, view, look).draw(image, image.rect(), 100));
    return image;
}

int litPixels(const QImage& image) {
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            count += (image.pixel(x, y) & 0xFFFFFF) != 0 ? 1 : 0;
        }
    }
    return count;
}

/// The last digits of places may differ, and smooth edges with them.
bool areAlike(const QImage& a, const QImage& b) {
    constexpr int slight = 6;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const QRgb p = a.pixel(x, y);
            const QRgb q = b.pixel(x, y);
            if (std::abs(qRed(p) - qRed(q)) > slight || std::abs(qGreen(p) - qGreen(q)) > slight ||
                std::abs(qBlue(p) - qBlue(q)) > slight) {
                return false;
            }
        }
    }
    return a.size() == b.size();
}

/// Only blank pixels beyond the rectangle.
bool isDrawnWithin(const QImage& image, const QRect& area) {
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (!area.contains(x, y) && (image.pixel(x, y) & 0xFFFFFF) != 0) {
                return false;
            }
        }
    }
    return true;
}

class DrawnScene : public testing::Test {
protected:
    void script(const std::string& text) {
        std::istringstream lines(text);
        session.runScript(lines);
    }
    AcDbDatabase& database() { return *curDoc()->database(); }

    host::Session session;
    // Off the round numbers, where the last digit decides which pixel a line begins in.
    app::ViewMap view{{50.037, 50.021}, 0.2503, 400, 400};

    void SetUp() override { session.newDrawing(); }
};

} // namespace

TEST(DisplayTree, FindsWhatWalkingFinds) {
    std::mt19937 random(7);
    std::uniform_real_distribution<float> place(-1000, 1000);
    std::uniform_real_distribution<float> size(0, 30);
    for (const std::size_t count : {0, 1, 16, 17, 500, 3000}) {
        std::vector<FloatBox> boxes(count);
        for (FloatBox& box : boxes) {
            const float x = place(random);
            const float y = place(random);
            box = {x, y, x + size(random), y + size(random)};
        }
        if (count > 20) {
            boxes[7] = FloatBox();
        }
        const app::DisplayTree tree{boxes};
        for (int round = 0; round < 20; ++round) {
            const float x = place(random);
            const float y = place(random);
            const FloatBox asked{x, y, x + 10 * size(random), y + 10 * size(random)};
            std::vector<bool> found(count);
            tree.search(asked, 0, [&](std::uint32_t item, bool whole) {
                EXPECT_FALSE(found[item]) << "told twice";
                EXPECT_TRUE(!whole || asked.contains(boxes[item]));
                found[item] = true;
            });
            for (std::size_t i = 0; i < count; ++i) {
                EXPECT_TRUE(found[i] || boxes[i].isEmpty() || !boxes[i].touches(asked)) << i;
            }
        }
        // With everything too small to be seen there still is something of every part.
        std::size_t shown = 0;
        tree.search({-2000, -2000, 2000, 2000}, 1e9F, [&](std::uint32_t, bool) { ++shown; });
        EXPECT_EQ(shown, (count - (count > 20 ? 1 : 0) + 15) / 16);
    }
}

TEST_F(DrawnScene, ChangesGiveThePictureThatStartingAnewGives) {
    app::Scene scene(database());
    app::CanvasLook look;
    look.background = 0xFF000000;
    const char* const changes[] = {
        "LINE 10,10 90,20 50,80\n\nCIRCLE 30,60 12\n",
        "TEXT 20,30 6 15 Draw\nPLINE 5,5 95,5 A 95,60 L 60,90\n\n",
        "MOVE 30,72\n\n0,0 12,-9\n",
        "COLOR 3\nXLINE 0,0 10,7\n\nCOLOR BYLAYER\n",
        "-BLOCK sign 50,80 50,45\n\n-INSERT sign 70,70 1 1 0\n",
        "U\n",
        "-LAYER M walls C 5 walls\n\nCIRCLE 80,30 10\n",
        "-LAYER C 1 walls OFF walls\nY\n\n",
        "ERASE ALL\n\n",
        "U\nREDO\nU\n",
    };
    for (const char* change : changes) {
        script(change);
        scene.update();
        QImage image(view.width, view.height, QImage::Format_RGB32);
        image.fill(0xFF000000);
        ASSERT_TRUE(app::Renderer(scene, view, look).draw(image, image.rect(), 100));
        ASSERT_TRUE(areAlike(image, pictureOf(database(), view))) << change;
    }
}

TEST_F(DrawnScene, ToldPartsCoverWhatChanged) {
    script("LINE 10,10 90,20\n\nCIRCLE 30,60 12\n");
    app::Scene scene(database());
    app::CanvasLook look;
    look.background = 0xFF000000;
    QImage image(view.width, view.height, QImage::Format_RGB32);
    image.fill(0xFF000000);
    app::Renderer(scene, view, look).draw(image, image.rect(), 100);
    script("MOVE 30,72\n\n0,0 25,-9\nARC 60,60 70,80 90,70\n");
    const app::SceneChange change = scene.update();
    ASSERT_FALSE(change.everything);
    ASSERT_EQ(change.boxes.size(), 3u) << "where the circle was and is, and the arc";
    for (const host::Box2d& box : change.boxes) {
        const QRect part(
            QPoint(static_cast<int>(view.x(box.minimum.x)) - 2, static_cast<int>(view.y(box.maximum.y)) - 2),
            QPoint(static_cast<int>(view.x(box.maximum.x)) + 2, static_cast<int>(view.y(box.minimum.y)) + 2));
        QPainter(&image).fillRect(part, Qt::black);
        app::Renderer(scene, view, look).draw(image, part, 100);
    }
    QImage whole(view.width, view.height, QImage::Format_RGB32);
    whole.fill(0xFF000000);
    app::Renderer(scene, view, look).draw(whole, whole.rect(), 100);
    EXPECT_TRUE(areAlike(image, whole));
}

TEST_F(DrawnScene, TinyEntitiesAreDotsAndHugeOnesKeepTheirPlace) {
    script("CIRCLE 50,50 0.01\n");
    EXPECT_EQ(litPixels(pictureOf(database(), view)), 1);
    // An arc of a circle ten million times the window still passes where it should.
    script("ERASE ALL\n\nCIRCLE 50,-20000000 20000050\n");
    const QImage arc = pictureOf(database(), view);
    EXPECT_TRUE(isDrawnWithin(arc, QRect(0, 197, 400, 6)));
    EXPECT_GE(litPixels(arc), 400);
}

TEST_F(DrawnScene, ALinetypeShowsItsGapsWhenThereIsRoom) {
    script("(entmake '((0 . \"LTYPE\") (100 . \"AcDbSymbolTableRecord\") (100 . \"AcDbLinetypeTableRecord\") "
           "(2 . \"GAPS\") (70 . 0) (3 . \"\") (72 . 65) (73 . 2) (40 . 19.05) (49 . 12.7) (74 . 0) "
           "(49 . -6.35) (74 . 0)))\n(setvar \"CELTYPE\" \"GAPS\")\nLINE 0,50 100,50\n\n");
    const int near = litPixels(pictureOf(database(), view));
    EXPECT_GT(near, 200);
    EXPECT_LT(near, 340) << "a third of the line's 400 pixels is gaps";
    app::ViewMap far = view;
    far.unitsPerPixel = 10;
    EXPECT_GE(litPixels(pictureOf(database(), far)), 9) << "a whole line";
}

TEST_F(DrawnScene, WhatIsLockedIsPaler) {
    script("-LAYER M\nRED\nC\n1\nRED\n\nLINE 0,50 100,50\n\n");
    app::Scene scene(database());
    app::CanvasLook look;
    look.background = 0xFF000000;
    const auto brightest = [&] {
        scene.update();
        QImage image(view.width, view.height, QImage::Format_RGB32);
        image.fill(look.background);
        app::Renderer(scene, view, look).draw(image, image.rect(), 100);
        int red = 0;
        for (int y = 0; y < image.height(); ++y) {
            red = std::max(red, qRed(image.pixel(image.width() / 2, y)));
        }
        return red;
    };
    const int plain = brightest();
    look.lockedFade = 60;
    EXPECT_EQ(brightest(), plain);
    script("-LAYER LO\nRED\n\n");
    EXPECT_NEAR(brightest(), plain * 0.4, 4);
    look.lockedFade = -60; // switched off
    EXPECT_EQ(brightest(), plain);
}
