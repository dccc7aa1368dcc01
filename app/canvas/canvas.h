// The drawing area: shows the current drawing, follows it, and turns what the mouse does into points for
// whoever listens. Pan, zoom and everything drawn on top are dealt with here; what an answer means is not.
#pragma once

#include "app/canvas/aiming.h"
#include "app/canvas/breakwatch.h"
#include "app/canvas/renderer.h"

#include "host/ed/editorview.h"
#include "host/ed/input.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QImage>
#include <QRegion>
#include <QTimer>
#include <QWidget>
#include <map>
#include <memory>
#include <optional>

class AcApDocument;

namespace host {
struct Slide;
}

namespace app {

struct StoredView;

/// Told of what the user does in the drawing area.
class CanvasListener {
public:
    virtual ~CanvasListener() = default;
    /// The left button went down, or was let go after a drag that began with a press (`released`).
    virtual void pressed(const Aimed& aimed, Qt::KeyboardModifiers modifiers, bool released) = 0;
    virtual void moved(const Aimed& aimed) = 0;
    virtual void doubleClicked(const Aimed&) {}
    /// The right button: Enter.
    virtual void confirmed() = 0;
    /// The right button: its menu, or that of object snaps for one point.
    virtual void menuWanted(const QPoint& /*onScreen*/, bool /*snaps*/) {}
    /// An object cannot be shown: one line for the user.
    virtual void failed(const std::wstring&) {}
    virtual void keyPressed(QKeyEvent& event) = 0;
    virtual void viewChanged() {}
};

/// A grip as it is shown.
struct GripMark {
    AcGePoint3d point;
    bool isHot = false;
};

class Canvas final : public QWidget, public host::EditorView {
    Q_DECLARE_TR_FUNCTIONS(Canvas)

public:
    explicit Canvas(QWidget* parent = nullptr);
    ~Canvas() override;

    void setListener(CanvasListener* listener) { mListener = listener; }
    /// Shows a drawing, or nothing; each keeps its view.
    void setDocument(AcApDocument* document);
    /// A document is going away.
    void forget(AcApDocument* document);
    /// What is asked now; null while nothing is.
    void setRequest(const host::InputRequest* request, const QString& prompt);
    /// A rectangle that selects, from this corner; for choosing before a command.
    void setSelecting(std::optional<AcGePoint3d> corner);
    void setGrips(std::vector<GripMark> grips);
    /// The grip under a place of the plan.
    std::optional<std::size_t> gripAt(const AcGePoint2d& place) const;
    /// Text beside the cursor, behind the prompt: what is being typed.
    void setTyped(const QString& text);
    /// Takes in what changed in the drawing.
    void followDrawing();

    Scene* scene() const { return mView != nullptr ? mView->scene.get() : nullptr; }
    const ViewMap& map() const { return mMap; }
    const Aimed& aimed() const { return mAimed; }
    void zoomExtents();
    /// Before the view is changed by hand.
    void browse();
    /// Enlarges by the factor around a place in device pixels.
    void zoomAt(double x, double y, double factor);
    void setBackground(std::uint32_t color);
    /// The picture without cross hair and bands, as it is shown now.
    const QImage& picture();
    /// Logical pixel of a world point.
    QPointF toWidget(const AcGePoint3d& point) const;

    // EditorView.
    void viewChanged() override;
    void redraw() override;
    void regenerate() override;
    void highlight(std::span<const AcDbObjectId> ids, bool on) override;
    void drawVector(const AcGePoint3d& from, const AcGePoint3d& to, int color, bool highlighted) override;
    Acad::ErrorStatus runLong(std::wstring_view title,
                              const std::function<Acad::ErrorStatus()>& job) override;
    bool isShown() const override { return true; }
    bool isBreakAsked() override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    bool event(QEvent* event) override;

private:
    struct SpaceView {
        AcGePoint2d centre;
        double unitsPerPixel = 0; ///< 0: not seen yet
    };
    struct DocumentView {
        std::unique_ptr<Scene> scene;
        AcDbStub* space = nullptr; ///< that is shown
        std::map<AcDbStub*, SpaceView> spaces;
    };
    struct Vector {
        AcGePoint3d from, to;
        QColor color;
        bool highlighted;
    };

    void setView(const AcGePoint2d& centre, double unitsPerPixel);
    void showSpace();
    void keepView();
    void readView();
    double unitsFor(const StoredView& view) const;
    bool isWorthSeeing(const StoredView& view);
    void invalidate(const SceneChange& change);
    void bringUpToDate();
    void drawPart(const QRect& part, double seconds, bool& isWhole);
    void drawBackground(QPainter& painter, const QRect& clip) const;
    void drawGrid(QPainter& painter, const QRect& clip) const;
    void pan(const QPoint& by);
    void aim(const QPointF& at);
    void rightReleased(const QMouseEvent& event);
    void paintOverlay(QPainter& painter);
    void paintBand(QPainter& painter);
    void paintCursor(QPainter& painter);
    AcGePoint2d worldAt(const QPointF& widget) const;
    double ratio() const { return devicePixelRatioF(); }

    CanvasListener* mListener = nullptr;
    AcApDocument* mDocument = nullptr;
    std::map<AcApDocument*, DocumentView> mViews;
    DocumentView* mView = nullptr;
    ViewMap mMap;
    CanvasLook mLook;
    QImage mPicture;
    bool mShowsAll = false;                         ///< nothing was zoomed or moved since all was shown
    bool mIsStale = true;                           ///< the whole picture
    QRegion mStaleParts;                            ///< device pixels
    std::shared_ptr<const host::Slide> mShownSlide; ///< in the picture, in the place of the drawing
    bool mIsIncomplete = false;
    QTimer mCompletion;
    BreakWatch mBreakWatch;
    bool mIsFrozen = false; ///< a command works on the drawing: the picture stays as it is

    const host::InputRequest* mRequest = nullptr;
    QString mPrompt;
    QString mTyped;
    std::optional<AcGePoint3d> mSelectingFrom;
    std::vector<GripMark> mGrips;
    std::vector<Vector> mVectors;
    Aimed mAimed;
    QPointF mCursor;
    bool mIsInside = false;
    QPointF mPressedAt;
    bool mIsPressed = false;
    bool mIsPanning = false;
    QPoint mPannedFrom;
    QElapsedTimer mRightPressed;
    bool mIsBrowsing = false; ///< the view before was noted when this run of zooming and panning began
    bool mWasAtCommandPrompt = true;
};

} // namespace app
