#include "app/canvas/canvas.h"

#include "app/canvas/longjob.h"
#include "app/canvas/overlay.h"

#include "host/ed/acdocman.h"
#include "host/ed/aced.h"
#include "host/ed/question.h"
#include "host/ed/sysvars.h"
#include "host/mfc/appwindow.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QScreen>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

namespace app {
namespace {

constexpr double wheelStep = 1.25;      ///< a notch of the wheel
constexpr double quickSeconds = 0.030;  ///< of making geometry before something is shown
constexpr double patientSeconds = 0.15; ///< between two events afterwards
constexpr double dragThreshold = 5;     ///< logical pixels
constexpr double smallestUnits = 1e-9, greatestUnits = 1e15;

QColor rgb(std::uint32_t color) {
    return QColor::fromRgb(color);
}

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
    mView = nullptr;
    if (document != nullptr) {
        mView = &mViews[document];
        if (mView->scene == nullptr) {
            mView->scene = std::make_unique<Scene>(*document->database());
        }
        if (mView->unitsPerPixel > 0) {
            mMap.centre = mView->centre;
            mMap.unitsPerPixel = mView->unitsPerPixel;
        } else if (mView->scene->extents().isEmpty()) {
            readView();
        } else {
            zoomExtents();
        }
        storeView();
    }
    mIsStale = true;
    update();
}

void Canvas::forget(AcApDocument* document) {
    if (document == mDocument) {
        setDocument(nullptr);
    }
    mViews.erase(document);
}

void Canvas::setRequest(const host::InputRequest* request, const QString& prompt) {
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
    storeView();
    if (mIsInside) {
        aim(mCursor);
    }
    if (mListener != nullptr) {
        mListener->viewChanged();
    }
    update();
}

/// The variables that commands know the view by.
void Canvas::storeView() {
    if (mView == nullptr) {
        return;
    }
    mView->centre = mMap.centre;
    mView->unitsPerPixel = mMap.unitsPerPixel;
    resbuf value{};
    value.restype = RT3DPOINT;
    host::setPoint(value.resval.rpoint, host::worldToUcs({mMap.centre.x, mMap.centre.y, 0}));
    host::putSystemVariable(L"VIEWCTR", value);
    value = {};
    value.restype = RTREAL;
    value.resval.rreal = mMap.height * mMap.unitsPerPixel;
    host::putSystemVariable(L"VIEWSIZE", value);
    value = {};
    value.restype = RTPOINT;
    value.resval.rpoint[0] = mMap.width;
    value.resval.rpoint[1] = mMap.height;
    host::putSystemVariable(L"SCREENSIZE", value);
}

void Canvas::readView() {
    const host::ResbufList centre = host::systemVariable(L"VIEWCTR");
    const double height = host::systemVariableReal(L"VIEWSIZE");
    if (centre != nullptr && height > 0) {
        const AcGePoint3d world = host::ucsToWorld(host::asPoint3d(centre->resval.rpoint));
        mMap.centre = {world.x, world.y};
        mMap.unitsPerPixel = height / mMap.height;
    }
}

void Canvas::viewChanged() {
    readView();
    setView(mMap.centre, mMap.unitsPerPixel);
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

// The picture.

void Canvas::followDrawing() {
    if (mView != nullptr) {
        invalidate(mView->scene->update());
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
    if (!mIsStale && mStaleParts.isEmpty()) {
        return;
    }
    mLook.pixelRatio = ratio() > 1.25 ? ratio() : 1.0;
    mLook.showsLineWeights = host::systemVariableInteger(L"LWDISPLAY") != 0;
    constexpr int manyRects = 24;
    if (mStaleParts.rectCount() > manyRects) {
        mStaleParts = mStaleParts.boundingRect();
    }
    const QRegion parts = mIsStale ? QRegion(mPicture.rect()) : mStaleParts.intersected(mPicture.rect());
    const double seconds = mIsIncomplete ? patientSeconds : quickSeconds;
    bool isWhole = true;
    for (const QRect& part : parts) {
        QPainter painter(&mPicture);
        drawBackground(painter, part);
        painter.end();
        if (mView != nullptr) {
            Renderer renderer(*mView->scene, mMap, mLook);
            isWhole = renderer.draw(mPicture, part, seconds) && isWhole;
        }
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
    painter.fillRect(clip, rgb(mLook.background));
    if (mView != nullptr && host::systemVariableInteger(L"GRIDMODE") != 0) {
        drawGrid(painter, clip);
    }
}

void Canvas::drawGrid(QPainter& painter, const QRect& clip) const {
    constexpr double nearest = 9; // device pixels between two lines
    const host::ResbufList unit = host::systemVariable(L"GRIDUNIT");
    const int major = std::max(host::systemVariableInteger(L"GRIDMAJOR"), 2);
    const QColor fine = rgb(mLook.background).lighter(125);
    const QColor strong = rgb(mLook.background).lighter(155);
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
                        isStandard ? rgb(AcCmEntityColor::lookUpRGB(static_cast<Adesk::UInt8>(color)))
                                   : rgb(mLook.foreground),
                        highlighted});
    update();
}

void Canvas::setBackground(std::uint32_t color) {
    mLook.background = 0xFF000000 | color;
    mLook.foreground = rgb(color).lightness() < 128 ? 0xFFFFFFFF : 0xFF000000;
    mIsStale = true;
    update();
}

Acad::ErrorStatus Canvas::runLong(std::wstring_view title, const std::function<Acad::ErrorStatus()>& job) {
    return runLongJob(window(), QString::fromWCharArray(title.data(), static_cast<qsizetype>(title.size())),
                      job);
}

// Painting.

void Canvas::paintEvent(QPaintEvent*) {
    bringUpToDate();
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
    paintOverlay(painter);
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
                  rgb(mLook.foreground));
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
        overlay::rectangle(painter, from, mCursor, selection(from), rgb(mLook.foreground));
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
        overlay::rectangle(painter, from, to, overlay::Rectangle::plain, rgb(mLook.foreground));
        break;
    case host::Aim::Band::selection:
        overlay::rectangle(painter, from, to, selection(from), rgb(mLook.foreground));
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
    overlay::crossHair(painter, mCursor, picks ? 0 : reach, box, rgb(mLook.foreground));
    const bool hasQuestion = !idle && !mPrompt.isEmpty();
    if ((hasQuestion || !mTyped.isEmpty()) && host::systemVariableInteger(L"DYNMODE") >= 0) {
        const QString text = idle ? mTyped : mTyped.isEmpty() ? mPrompt : mPrompt + QLatin1Char(' ') + mTyped;
        overlay::tip(painter, mCursor + QPointF(18, mAimed.snapKind != 0 ? 34 : 16), text, rect());
    }
}

// Events.

void Canvas::resizeEvent(QResizeEvent*) {
    const double units = mMap.unitsPerPixel;
    const bool showsAll = mShowsAll || mMap.width <= 1;
    mMap.width = std::max(1, static_cast<int>(std::lround(width() * ratio())));
    mMap.height = std::max(1, static_cast<int>(std::lround(height() * ratio())));
    mIsStale = true;
    if (showsAll && mView != nullptr && !mView->scene->extents().isEmpty()) {
        zoomExtents();
        return;
    }
    setView(mMap.centre, units);
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
        mListener->confirmed();
    } else if (event->button() == Qt::LeftButton) {
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

void Canvas::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() == Qt::MiddleButton) {
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
