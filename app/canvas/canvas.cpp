#include "app/canvas/canvas.h"

#include "app/canvas/longjob.h"
#include "app/canvas/storedview.h"

#include "host/ed/acdocman.h"
#include "host/ed/aced.h"
#include "host/ed/documentstate.h"
#include "host/ed/question.h"
#include "host/ed/sysvars.h"
#include "host/ed/viewhistory.h"
#include "host/mfc/appwindow.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

namespace app {
namespace {

constexpr double wheelStep = 1.25;  ///< a notch of the wheel
constexpr double dragThreshold = 5; ///< logical pixels
constexpr double smallestUnits = 1e-9, greatestUnits = 1e15;
constexpr int longPress = 250; ///< milliseconds that the right button is down for its menu

} // namespace

Canvas::Canvas(QWidget* parent) : QWidget(parent) {
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::BlankCursor);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMinimumSize(160, 120);
    mCompletion.setSingleShot(true);
    connect(&mCompletion, &QTimer::timeout, this, [this] {
        if (mIsIncomplete) {
            mIsStale = true;
            update();
        }
    });
}

Canvas::~Canvas() {
    host::setEditorView(nullptr);
}

void Canvas::setDocument(AcApDocument* document) {
    if (document == mDocument && mView != nullptr) {
        return;
    }
    mDocument = document;
    mVectors.clear();
    mGrips.clear();
    mSelectingFrom.reset();
    mShownSlide.reset();
    mView = nullptr;
    if (document != nullptr) {
        mView = &mViews[document];
        if (mView->scene == nullptr) {
            mView->scene = std::make_unique<Scene>(*document->database());
        }
        showSpace();
    }
    mIsStale = true;
    update();
}

/// The space that is shown as it was left, or as the drawing was; one seen for the first time whole.
void Canvas::showSpace() {
    mView->space = mView->scene->space().stub();
    mIsBrowsing = false;
    const AcDbDatabase& database = mView->scene->database();
    const bool isModel = mView->scene->space() == database.impl().containers.modelSpace;
    if (const SpaceView& seen = mView->spaces[mView->space]; seen.unitsPerPixel > 0) {
        mMap.centre = seen.centre;
        mMap.unitsPerPixel = seen.unitsPerPixel;
    } else if (mView->scene->extents().isEmpty()) {
        readView();
    } else if (const std::optional<StoredView> stored = isModel ? storedView(database) : std::nullopt;
               stored && isWorthSeeing(*stored)) {
        setView(stored->centre, unitsFor(*stored));
    } else {
        zoomExtents();
    }
    keepView();
}

double Canvas::unitsFor(const StoredView& view) const {
    return std::max(view.height / mMap.height, view.height * view.aspect / mMap.width);
}

/// Something is in the view, and not all of it in a few pixels.
bool Canvas::isWorthSeeing(const StoredView& view) {
    constexpr double least = 12; // pixels
    const double units = unitsFor(view);
    const AcGeVector2d half(0.5 * units * mMap.width, 0.5 * units * mMap.height);
    const host::Box2d window{view.centre - half, view.centre + half};
    host::Box2d seen;
    mView->scene->search(window, 0, [&](std::size_t index) {
        const SceneItem& item = mView->scene->items()[index];
        if (!item.isHidden && !item.box.isEmpty()) {
            seen.add(mView->scene->absolute(item.box));
        }
    });
    return !seen.isEmpty() && std::max(seen.width(), seen.height()) > least * units;
}

void Canvas::forget(AcApDocument* document) {
    if (document == mDocument) {
        setDocument(nullptr);
    }
    mViews.erase(document);
}

void Canvas::setRequest(const host::InputRequest* request, const QString& prompt) {
    if (request != nullptr && request->atCommandPrompt != mWasAtCommandPrompt) {
        mWasAtCommandPrompt = request->atCommandPrompt;
        mIsBrowsing = false;
    }
    if (request != nullptr) {
        mBreakWatch.release();
    } else {
        mBreakWatch.restart();
    }
    mRequest = request;
    mPrompt = prompt;
    if (request != nullptr && mIsInside) {
        aim(mCursor);
    }
    update();
}

void Canvas::setSelecting(std::optional<AcGePoint3d> corner) {
    mSelectingFrom = corner;
    update();
}

void Canvas::setGrips(std::vector<GripMark> grips) {
    mGrips = std::move(grips);
    update();
}

void Canvas::setTyped(const QString& text) {
    if (text != mTyped) {
        mTyped = text;
        update();
    }
}

std::optional<std::size_t> Canvas::gripAt(const AcGePoint2d& place) const {
    const double reach = (host::systemVariableInteger(L"GRIPSIZE") + 2) * ratio() * mMap.unitsPerPixel;
    for (std::size_t i = 0; i < mGrips.size(); ++i) {
        const AcGePoint3d& point = mGrips[i].point;
        if (std::abs(point.x - place.x) <= reach && std::abs(point.y - place.y) <= reach) {
            return i;
        }
    }
    return std::nullopt;
}

// The view.

void Canvas::setView(const AcGePoint2d& centre, double unitsPerPixel) {
    mShowsAll = false;
    mMap.centre = centre;
    mMap.unitsPerPixel = std::clamp(unitsPerPixel, smallestUnits, greatestUnits);
    mIsStale = true;
    if (mDocument != nullptr) {
        mDocument->state().shownSlide.reset();
    }
    keepView();
    if (mIsInside) {
        aim(mCursor);
    }
    if (mListener != nullptr) {
        mListener->viewChanged();
    }
    update();
}

/// For when this space is shown again, in the drawing, and in the variables that commands know the view by.
void Canvas::keepView() {
    if (mView == nullptr) {
        return;
    }
    mView->spaces[mView->space] = {mMap.centre, mMap.unitsPerPixel};
    AcDbDatabase& database = mView->scene->database();
    if (mView->scene->space() == database.impl().containers.modelSpace) {
        storeView(database, {mMap.centre, mMap.height * mMap.unitsPerPixel,
                             static_cast<double>(mMap.width) / mMap.height});
    }
    host::keepShownView({{mMap.centre.x, mMap.centre.y, 0}, mMap.height * mMap.unitsPerPixel});
    resbuf value{};
    value.restype = RTPOINT;
    value.resval.rpoint[0] = mMap.width;
    value.resval.rpoint[1] = mMap.height;
    host::putSystemVariable(L"SCREENSIZE", value);
}

void Canvas::readView() {
    if (const host::ShownView shown = host::shownView(); shown.height > 0) {
        mMap.centre = {shown.centre.x, shown.centre.y};
        mMap.unitsPerPixel = shown.height / mMap.height;
    }
}

void Canvas::viewChanged() {
    const host::ShownView wanted = host::shownView();
    followDrawing(); // another space may be shown now, which would bring its own view back
    host::keepShownView(wanted);
    readView();
    setView(mMap.centre, mMap.unitsPerPixel);
}

/// A run of zooming and panning by hand is one view to go back to.
void Canvas::browse() {
    if (!std::exchange(mIsBrowsing, true)) {
        host::rememberView();
    }
}

void Canvas::zoomExtents() {
    if (mView == nullptr) {
        return;
    }
    constexpr double around = 1.04;
    const host::Box2d box = mView->scene->extents();
    if (box.isEmpty()) {
        return;
    }
    const double units = std::max(box.width() / mMap.width, box.height() / mMap.height) * around;
    setView(box.center(), units > 0 ? units : mMap.unitsPerPixel);
    mShowsAll = true;
}

void Canvas::zoomAt(double x, double y, double factor) {
    const AcGePoint2d fixed = mMap.world(x, y);
    const double units = std::clamp(mMap.unitsPerPixel / factor, smallestUnits, greatestUnits);
    setView({fixed.x - (x - 0.5 * mMap.width) * units, fixed.y + (y - 0.5 * mMap.height) * units}, units);
}

/// Moves what is there and draws only the strips that come into sight.
void Canvas::pan(const QPoint& by) {
    bringUpToDate();
    const bool wasWhole = !mIsIncomplete;
    setView({mMap.centre.x - by.x() * mMap.unitsPerPixel, mMap.centre.y + by.y() * mMap.unitsPerPixel},
            mMap.unitsPerPixel);
    if (!wasWhole || mPicture.isNull()) {
        return;
    }
    const QImage before = mPicture;
    QPainter painter(&mPicture);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.drawImage(by, before);
    painter.end();
    mIsStale = false;
    mStaleParts += QRegion(mPicture.rect()) - QRegion(mPicture.rect().translated(by));
}

AcGePoint2d Canvas::worldAt(const QPointF& widget) const {
    return mMap.world(widget.x() * ratio(), widget.y() * ratio());
}

QPointF Canvas::toWidget(const AcGePoint3d& point) const {
    return {mMap.x(point.x) / ratio(), mMap.y(point.y) / ratio()};
}

// EditorView.

void Canvas::redraw() {
    mVectors.clear();
    followDrawing();
    repaint();
}

void Canvas::regenerate() {
    mVectors.clear();
    if (mView != nullptr) {
        mView->scene->regenerate();
    }
    mIsStale = true;
    update();
}

void Canvas::highlight(std::span<const AcDbObjectId> ids, bool on) {
    if (mView != nullptr) {
        followDrawing();
        invalidate(mView->scene->highlight(ids, on));
    }
}

void Canvas::drawVector(const AcGePoint3d& from, const AcGePoint3d& to, int color, bool highlighted) {
    const bool isStandard = color > 0 && color < 256 && color != AcCmEntityColor::kACIforeground;
    mVectors.push_back({from, to,
                        isStandard
                            ? QColor::fromRgb(AcCmEntityColor::lookUpRGB(static_cast<Adesk::UInt8>(color)))
                            : QColor::fromRgb(mLook.foreground),
                        highlighted});
    update();
}

void Canvas::setBackground(std::uint32_t color) {
    mLook.background = 0xFF000000 | color;
    mLook.foreground = QColor::fromRgb(color).lightness() < 128 ? 0xFFFFFFFF : 0xFF000000;
    mIsStale = true;
    update();
}

Acad::ErrorStatus Canvas::runLong(std::wstring_view title, const std::function<Acad::ErrorStatus()>& job) {
    return runLongJob(window(), QString::fromWCharArray(title.data(), static_cast<qsizetype>(title.size())),
                      job);
}

bool Canvas::isBreakAsked() {
    mIsFrozen = true;
    const bool isAsked = mBreakWatch.poll();
    mIsFrozen = false;
    return isAsked;
}

// Events.

void Canvas::resizeEvent(QResizeEvent*) {
    const double units = mMap.unitsPerPixel;
    const bool isFirst = mMap.width <= 1;
    mMap.width = std::max(1, static_cast<int>(std::lround(width() * ratio())));
    mMap.height = std::max(1, static_cast<int>(std::lround(height() * ratio())));
    mIsStale = true;
    if (isFirst && mView != nullptr) {
        mView->spaces.clear();
        showSpace();
    } else if (mShowsAll && mView != nullptr && !mView->scene->extents().isEmpty()) {
        zoomExtents();
    } else {
        setView(mMap.centre, units);
    }
}

void Canvas::aim(const QPointF& at) {
    mCursor = at;
    if (mView != nullptr && mRequest != nullptr) {
        followDrawing();
        mAimed = aimAt(*mView->scene, mMap, *mRequest, worldAt(at));
    } else {
        const AcGePoint2d place = worldAt(at);
        mAimed = {{place.x, place.y, 0}, {place.x, place.y, 0}};
    }
}

void Canvas::mousePressEvent(QMouseEvent* event) {
    mIsInside = true;
    if (event->button() == Qt::MiddleButton) {
        browse();
        mIsPanning = true;
        mPannedFrom = event->pos();
        setCursor(Qt::ClosedHandCursor);
        update();
        return;
    }
    aim(event->position());
    if (mListener == nullptr) {
        return;
    }
    if (event->button() == Qt::RightButton) {
        mRightPressed.start();
    } else if (event->button() == Qt::LeftButton) {
        mIsBrowsing = false;
        mPressedAt = event->position();
        mIsPressed = true;
        mListener->pressed(mAimed, event->modifiers(), false);
    }
}

void Canvas::mouseMoveEvent(QMouseEvent* event) {
    mIsInside = true;
    if (mIsPanning) {
        const QPoint by = event->pos() - mPannedFrom;
        mPannedFrom = event->pos();
        mCursor = event->position();
        pan({static_cast<int>(std::lround(by.x() * ratio())),
             static_cast<int>(std::lround(by.y() * ratio()))});
        return;
    }
    aim(event->position());
    update();
    if (mListener != nullptr) {
        mListener->moved(mAimed);
    }
}

void Canvas::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::MiddleButton && mIsPanning) {
        mIsPanning = false;
        setCursor(Qt::BlankCursor);
        update();
        return;
    }
    if (event->button() == Qt::RightButton && mRightPressed.isValid()) {
        rightReleased(*event);
        return;
    }
    if (event->button() != Qt::LeftButton || !mIsPressed) {
        return;
    }
    mIsPressed = false;
    const QPointF by = event->position() - mPressedAt;
    if (std::hypot(by.x(), by.y()) > dragThreshold && mListener != nullptr) {
        aim(event->position());
        mListener->pressed(mAimed, event->modifiers(), true);
    }
}

/// By SHORTCUTMENU: a menu, or Enter, or (16) Enter for a short press and the menu for a long one.
void Canvas::rightReleased(const QMouseEvent& event) {
    const bool isLong = mRightPressed.elapsed() >= longPress;
    mRightPressed.invalidate();
    if (mListener == nullptr) {
        return;
    }
    if (event.modifiers().testFlag(Qt::ShiftModifier)) {
        mListener->menuWanted(event.globalPosition().toPoint(), true);
        return;
    }
    constexpr int atPrompt = 1, withSelection = 2, inCommand = 4, inCommandWithKeywords = 8, timed = 16;
    const int modes = host::systemVariableInteger(L"SHORTCUTMENU");
    const bool idle = mRequest != nullptr && mRequest->atCommandPrompt;
    const int wanted =
        !idle ? (mPrompt.contains(QLatin1Char('[')) ? inCommand | inCommandWithKeywords : inCommand)
        : mGrips.empty() ? atPrompt
                         : withSelection;
    if ((modes & timed) != 0 ? isLong : (modes & wanted) != 0) {
        mListener->menuWanted(event.globalPosition().toPoint(), false);
    } else {
        mListener->confirmed();
    }
}

void Canvas::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() == Qt::MiddleButton) {
        browse();
        zoomExtents();
    } else if (event->button() == Qt::LeftButton && mListener != nullptr) {
        aim(event->position());
        if (mRequest != nullptr && mRequest->atCommandPrompt) {
            mListener->doubleClicked(mAimed);
        } else {
            mListener->pressed(mAimed, event->modifiers(), false);
        }
    } else {
        mousePressEvent(event);
    }
}

void Canvas::wheelEvent(QWheelEvent* event) {
    constexpr double notch = 120;
    const double notches = event->angleDelta().y() / notch;
    if (notches != 0) {
        browse();
        zoomAt(event->position().x() * ratio(), event->position().y() * ratio(),
               std::pow(wheelStep, notches));
    }
    event->accept();
}

void Canvas::keyPressEvent(QKeyEvent* event) {
    if (mListener != nullptr) {
        mListener->keyPressed(*event);
    }
}

void Canvas::enterEvent(QEnterEvent*) {
    if (!hasFocus() && !host::dialogKeepsFocus() && window()->isActiveWindow()) {
        setFocus(Qt::MouseFocusReason);
    }
}

void Canvas::leaveEvent(QEvent*) {
    mIsInside = false;
    update();
}

/// Tab belongs to the command line, not to the change of focus.
bool Canvas::event(QEvent* event) {
    if (event->type() == QEvent::KeyPress) {
        auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_Tab || key->key() == Qt::Key_Backtab) {
            keyPressEvent(key);
            return true;
        }
    }
    return QWidget::event(event);
}

} // namespace app
