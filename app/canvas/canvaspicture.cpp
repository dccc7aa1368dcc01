// The canvas as a picture: the drawing or a slide, kept and mended where it changed, and what is drawn on
// top.
#include "app/canvas/aiming.h"
#include "app/canvas/canvas.h"
#include "app/canvas/overlay.h"

#include "host/ed/acdocman.h"
#include "host/ed/aced.h"
#include "host/ed/documentstate.h"
#include "host/ed/sysvars.h"

#include <QPaintEvent>
#include <algorithm>
#include <cmath>

namespace app {
namespace {

constexpr double quickSeconds = 0.030;  ///< of making geometry before something is shown
constexpr double patientSeconds = 0.15; ///< between two events afterwards

} // namespace

void Canvas::followDrawing() {
    if (mView == nullptr) {
        return;
    }
    invalidate(mView->scene->update());
    if (mView->scene->space().stub() != mView->space) {
        showSpace();
        mIsStale = true;
    }
}

void Canvas::invalidate(const SceneChange& change) {
    constexpr std::size_t manyParts = 200;
    if (change.isEmpty()) {
        return;
    }
    if (change.everything || change.boxes.size() > manyParts) {
        mIsStale = true;
    }
    for (const host::Box2d& box : change.boxes) {
        constexpr double margin = 6; // of markers and wide lines
        const double left = std::clamp(mMap.x(box.minimum.x) - margin, -1.0, mMap.width + 1.0);
        const double right = std::clamp(mMap.x(box.maximum.x) + margin, -1.0, mMap.width + 1.0);
        const double top = std::clamp(mMap.y(box.maximum.y) - margin, -1.0, mMap.height + 1.0);
        const double bottom = std::clamp(mMap.y(box.minimum.y) + margin, -1.0, mMap.height + 1.0);
        if (mIsStale) {
            break;
        }
        mStaleParts += QRect(QPoint(static_cast<int>(left), static_cast<int>(top)),
                             QPoint(static_cast<int>(right) + 1, static_cast<int>(bottom) + 1));
    }
    update();
}

void Canvas::bringUpToDate() {
    followDrawing();
    const QSize size(mMap.width, mMap.height);
    if (mPicture.size() != size) {
        mPicture = QImage(size, QImage::Format_RGB32);
        mIsStale = true;
    }
    std::shared_ptr<const host::Slide> slide =
        mDocument != nullptr ? mDocument->state().shownSlide : std::shared_ptr<const host::Slide>();
    if (slide != mShownSlide) {
        mShownSlide = std::move(slide);
        mIsStale = true;
    }
    if (!mIsStale && mStaleParts.isEmpty()) {
        return;
    }
    mLook.pixelRatio = ratio() > 1.25 ? ratio() : 1.0;
    mLook.showsLineWeights = host::systemVariableInteger(L"LWDISPLAY") != 0;
    mLook.lockedFade = host::systemVariableInteger(L"LAYLOCKFADECTL"); // below zero: switched off
    constexpr int manyRects = 24;
    if (mStaleParts.rectCount() > manyRects) {
        mStaleParts = mStaleParts.boundingRect();
    }
    const QRegion parts = mIsStale ? QRegion(mPicture.rect()) : mStaleParts.intersected(mPicture.rect());
    const double seconds = mIsIncomplete ? patientSeconds : quickSeconds;
    bool isWhole = true;
    for (const QRect& part : parts) {
        drawPart(part, seconds, isWhole);
    }
    mIsIncomplete = !isWhole || (mIsIncomplete && !mIsStale);
    mIsStale = false;
    mStaleParts = QRegion();
    if (mView != nullptr) {
        mView->scene->trim(mMap.box());
    }
    if (mIsIncomplete) {
        mCompletion.start(1);
    }
    for (const std::wstring& fault :
         mView != nullptr ? mView->scene->takeFaults() : std::vector<std::wstring>()) {
        if (mListener != nullptr) {
            mListener->failed(fault);
        }
    }
}

void Canvas::drawPart(const QRect& part, double seconds, bool& isWhole) {
    QPainter painter(&mPicture);
    if (mShownSlide != nullptr) {
        painter.setClipRect(part);
        overlay::slide(painter, *mShownSlide, mPicture.rect(), mLook.background, mLook.foreground);
        return;
    }
    drawBackground(painter, part);
    painter.end();
    if (mView != nullptr) {
        Renderer renderer(*mView->scene, mMap, mLook);
        isWhole = renderer.draw(mPicture, part, seconds) && isWhole;
    }
}

const QImage& Canvas::picture() {
    bringUpToDate();
    while (mIsIncomplete) {
        mIsStale = true;
        bringUpToDate();
    }
    return mPicture;
}

void Canvas::drawBackground(QPainter& painter, const QRect& clip) const {
    painter.fillRect(clip, QColor::fromRgb(mLook.background));
    if (mView != nullptr && host::systemVariableInteger(L"GRIDMODE") != 0) {
        drawGrid(painter, clip);
    }
}

void Canvas::drawGrid(QPainter& painter, const QRect& clip) const {
    constexpr double nearest = 9; // device pixels between two lines
    const host::ResbufList unit = host::systemVariable(L"GRIDUNIT");
    const int major = std::max(host::systemVariableInteger(L"GRIDMAJOR"), 2);
    const QColor fine = QColor::fromRgb(mLook.background).lighter(125);
    const QColor strong = QColor::fromRgb(mLook.background).lighter(155);
    painter.setClipRect(clip);
    const auto spacing = [&](double step) {
        step = step > 0 ? step : 10;
        while (step / mMap.unitsPerPixel < nearest) {
            step *= major;
        }
        return step;
    };
    const double stepX = spacing(unit != nullptr ? unit->resval.rpoint[0] : 10);
    const double stepY = spacing(unit != nullptr ? unit->resval.rpoint[1] : 10);
    const host::Box2d box = mMap.box(clip.left(), clip.top(), clip.right() + 1, clip.bottom() + 1);
    const auto isStrong = [&](double index) { return std::fmod(std::abs(index), major) < 0.5; };
    for (const bool strongOnes : {false, true}) {
        painter.setPen(strongOnes ? strong : fine);
        for (double i = std::floor(box.minimum.x / stepX); i * stepX <= box.maximum.x; ++i) {
            if (isStrong(i) == strongOnes) {
                const int x = static_cast<int>(mMap.x(i * stepX));
                painter.drawLine(x, clip.top(), x, clip.bottom());
            }
        }
        for (double i = std::floor(box.minimum.y / stepY); i * stepY <= box.maximum.y; ++i) {
            if (isStrong(i) == strongOnes) {
                const int y = static_cast<int>(mMap.y(i * stepY));
                painter.drawLine(clip.left(), y, clip.right(), y);
            }
        }
    }
}

// On top of the picture.

void Canvas::paintEvent(QPaintEvent*) {
    if (!mIsFrozen) {
        bringUpToDate();
    }
    QPainter painter(this);
    const auto show = [&](QImage& image) {
        image.setDevicePixelRatio(ratio());
        painter.drawImage(QPointF(0, 0), image);
        image.setDevicePixelRatio(1);
    };
    if (mRequest != nullptr && !mRequest->dragged.empty() && mView != nullptr) {
        QImage frame = mPicture.copy();
        Renderer renderer(*mView->scene, mMap, mLook);
        for (AcDbEntity* entity : mRequest->dragged) {
            renderer.drawOnce(frame, *entity);
        }
        show(frame);
    } else {
        show(mPicture);
    }
    if (!mIsFrozen) {
        paintOverlay(painter);
    }
}

void Canvas::paintOverlay(QPainter& painter) {
    for (const Vector& vector : mVectors) {
        painter.setPen(QPen(vector.color, 1, vector.highlighted ? Qt::DashLine : Qt::SolidLine));
        painter.drawLine(toWidget(vector.from), toWidget(vector.to));
    }
    if (mView == nullptr) {
        return;
    }
    const AcGeMatrix3d ucs = host::ucsMatrix();
    const double angle = std::atan2(ucs.entry[1][0], ucs.entry[0][0]);
    overlay::axes(painter, QPointF(26, height() - 26), angle, ucs.isEqualTo(AcGeMatrix3d::kIdentity),
                  QColor::fromRgb(mLook.foreground));
    const double gripSize = host::systemVariableInteger(L"GRIPSIZE");
    const std::optional<std::size_t> under = mIsInside && mRequest != nullptr && mRequest->atCommandPrompt
                                                 ? gripAt(worldAt(mCursor))
                                                 : std::nullopt;
    for (std::size_t i = 0; i < mGrips.size(); ++i) {
        overlay::grip(painter, toWidget(mGrips[i].point), gripSize,
                      mGrips[i].isHot ? overlay::Grip::hot
                      : under == i    ? overlay::Grip::hovered
                                      : overlay::Grip::cold);
    }
    if (mIsInside && mRequest != nullptr) {
        paintBand(painter);
        paintCursor(painter);
    }
}

void Canvas::paintBand(QPainter& painter) {
    const QPointF to = toWidget(mAimed.point);
    const auto selection = [&](const QPointF& from) {
        return mCursor.x() >= from.x() ? overlay::Rectangle::window : overlay::Rectangle::crossing;
    };
    if (mSelectingFrom) {
        const QPointF from = toWidget(*mSelectingFrom);
        overlay::rectangle(painter, from, mCursor, selection(from), QColor::fromRgb(mLook.foreground));
        return;
    }
    if (!mRequest->base || !mRequest->wantsPoint) {
        return;
    }
    const QPointF from = toWidget(*mRequest->base);
    switch (mRequest->band) {
    case host::Aim::Band::line:
        overlay::rubberLine(painter, from, to, QColor(210, 190, 120));
        break;
    case host::Aim::Band::rectangle:
        overlay::rectangle(painter, from, to, overlay::Rectangle::plain, QColor::fromRgb(mLook.foreground));
        break;
    case host::Aim::Band::selection:
        overlay::rectangle(painter, from, to, selection(from), QColor::fromRgb(mLook.foreground));
        break;
    case host::Aim::Band::none:
        break;
    }
}

void Canvas::paintCursor(QPainter& painter) {
    if (mIsPanning) {
        return;
    }
    const bool isCorner = mRequest->base && mRequest->band == host::Aim::Band::selection;
    const bool picks = mRequest->picksObjects && !isCorner;
    const bool idle = mRequest->atCommandPrompt;
    const double percent = std::clamp(host::systemVariableInteger(L"CURSORSIZE"), 1, 100) / 100.0;
    const double reach =
        percent >= 1 ? std::max(width(), height()) * 1.0 : std::max(width(), height()) * percent * 0.5;
    const double box = picks || idle ? std::max(host::systemVariableInteger(L"PICKBOX"), 1) : 0;
    if (mAimed.snapKind != 0) {
        const QPointF at = toWidget(mAimed.point);
        overlay::snapMarker(painter, at, mAimed.snapKind);
        overlay::tip(painter, at + QPointF(14, 10), snapName(mAimed.snapKind), rect());
    }
    overlay::crossHair(painter, mCursor, picks ? 0 : reach, box, QColor::fromRgb(mLook.foreground));
    const bool hasQuestion = !idle && !mPrompt.isEmpty();
    if ((hasQuestion || !mTyped.isEmpty()) && host::systemVariableInteger(L"DYNMODE") >= 0) {
        const QString text = idle ? mTyped : mTyped.isEmpty() ? mPrompt : mPrompt + QLatin1Char(' ') + mTyped;
        // Below the name of a snap, or the tip that a command shows while something is dragged.
        const double below = mAimed.snapKind != 0 || mRequest->wantsMotion ? 40 : 16;
        overlay::tip(painter, mCursor + QPointF(18, below), text, rect());
    }
}

} // namespace app
