// CDC: drawing over a painter.
#include "host/mfc/gdi.h"
#include "host/mfc/widgets/application.h"
#include "host/mfc/widgets/context.h"
#include "host/mfc/widgets/window.h"

#include <QApplication>
#include <QPainter>
#include <QStyleOptionButton>
#include <QStyleOptionFocusRect>

struct HDC__ {
    QPainter* painter = nullptr;
    std::unique_ptr<QPainter> own; // on a bitmap
    CPen* pen = nullptr;
    CBrush* brush = nullptr;
    CFont* font = nullptr;
    CBitmap* bitmap = nullptr;
    CDC* object = nullptr;
    bool objectIsOwn = false;
    QColor textColor = Qt::black, backColor = Qt::white;
    bool opaque = true;
    QPoint at;
    int saved = 0;

    ~HDC__() {
        if (objectIsOwn) {
            object->m_hDC = nullptr;
            delete object;
        }
    }
};

namespace {

// For measuring where nothing is drawn.
QPainter* scratchPainter() {
    static QImage image(1, 1, QImage::Format_RGB32);
    static QPainter painter(&image);
    return &painter;
}

const QPen& penOf(const CPen& pen) {
    return std::get<QPen>(host::gdiObject(pen.m_hObject)->value);
}
const QBrush& brushOf(const CBrush& brush) {
    return std::get<QBrush>(host::gdiObject(brush.m_hObject)->value);
}

// Lines of one pixel lie on pixel centres.
QPointF center(int x, int y) {
    return {x + 0.5, y + 0.5};
}
QPolygonF centers(const POINT* points, int count) {
    QPolygonF polygon;
    for (int i = 0; i < count; ++i)
        polygon << center(points[i].x, points[i].y);
    return polygon;
}

int textFlags(UINT format) {
    int flags = (format & DT_CENTER) != 0  ? Qt::AlignHCenter
                : (format & DT_RIGHT) != 0 ? Qt::AlignRight
                                           : Qt::AlignLeft;
    const bool single = (format & DT_SINGLELINE) != 0;
    flags |= single && (format & DT_VCENTER) != 0  ? Qt::AlignVCenter
             : single && (format & DT_BOTTOM) != 0 ? Qt::AlignBottom
                                                   : Qt::AlignTop;
    flags |= single ? Qt::TextSingleLine : 0;
    flags |= (format & DT_WORDBREAK) != 0 ? Qt::TextWordWrap : 0;
    flags |= (format & DT_NOPREFIX) == 0 ? Qt::TextHideMnemonic : 0;
    return flags;
}

} // namespace

namespace host {

HDC newContext(QPainter* painter) {
    auto* made = new HDC__;
    made->painter = painter;
    painter->setPen(QPen(Qt::black, 1));
    painter->setBrush(Qt::white);
    return made;
}

void deleteContext(HDC context) {
    delete context;
}

} // namespace host

CDC::~CDC() {
    if (m_hDC != nullptr)
        DeleteDC();
}

BOOL CDC::Attach(HDC context) {
    m_hDC = context;
    if (context != nullptr && context->object == nullptr)
        context->object = this;
    return context != nullptr ? TRUE : FALSE;
}

HDC CDC::Detach() {
    if (m_hDC != nullptr && m_hDC->object == this)
        m_hDC->object = nullptr;
    return std::exchange(m_hDC, nullptr);
}

CDC* CDC::FromHandle(HDC context) {
    if (context != nullptr && context->object == nullptr) {
        context->object = new CDC;
        context->object->m_hDC = context;
        context->objectIsOwn = true;
    }
    return context != nullptr ? context->object : nullptr;
}

BOOL CDC::CreateCompatibleDC(CDC*) {
    host::application();
    return Attach(host::newContext(scratchPainter()));
}

BOOL CDC::DeleteDC() {
    HDC context = Detach();
    host::deleteContext(context);
    return context != nullptr ? TRUE : FALSE;
}

int CDC::GetDeviceCaps(int index) const {
    switch (index) {
    case LOGPIXELSX:
    case LOGPIXELSY:
        return 96; // pixels here are those of a screen at 100 %, whatever its scale
    case HORZRES:
        return GetSystemMetrics(SM_CXSCREEN);
    case VERTRES:
        return GetSystemMetrics(SM_CYSCREEN);
    default:
        return index == BITSPIXEL ? 32 : 0;
    }
}

int CDC::SaveDC() {
    m_hDC->painter->save();
    return ++m_hDC->saved;
}

BOOL CDC::RestoreDC(int saved) {
    const int to = saved < 0 ? m_hDC->saved + saved : saved - 1;
    if (to < 0 || to >= m_hDC->saved)
        return FALSE;
    for (; m_hDC->saved > to; --m_hDC->saved)
        m_hDC->painter->restore();
    return TRUE;
}

CPen* CDC::SelectObject(CPen* pen) {
    static CPen black(PS_SOLID, 1, RGB(0, 0, 0));
    CPen* const before = std::exchange(m_hDC->pen, pen != nullptr ? pen : &black);
    m_hDC->painter->setPen(penOf(*m_hDC->pen));
    return before != nullptr ? before : &black;
}

CBrush* CDC::SelectObject(CBrush* brush) {
    static CBrush white(RGB(255, 255, 255));
    CBrush* const before = std::exchange(m_hDC->brush, brush != nullptr ? brush : &white);
    m_hDC->painter->setBrush(brushOf(*m_hDC->brush));
    return before != nullptr ? before : &white;
}

CFont* CDC::SelectObject(CFont* font) {
    static CFont standard;
    if (standard.m_hObject == nullptr)
        standard.Attach(host::newFont(host::fontOf(nullptr)));
    CFont* const before = std::exchange(m_hDC->font, font != nullptr ? font : &standard);
    m_hDC->painter->setFont(host::fontOf(*m_hDC->font));
    return before != nullptr ? before : &standard;
}

CBitmap* CDC::SelectObject(CBitmap* bitmap) {
    CBitmap* const before = std::exchange(m_hDC->bitmap, bitmap);
    m_hDC->own.reset();
    m_hDC->painter = scratchPainter();
    if (bitmap != nullptr && bitmap->m_hObject != nullptr) {
        QImage& image = std::get<QImage>(host::gdiObject(bitmap->m_hObject)->value);
        m_hDC->own = std::make_unique<QPainter>(&image);
        m_hDC->painter = m_hDC->own.get();
        m_hDC->painter->setFont(host::fontOf(nullptr));
        m_hDC->painter->setBrush(Qt::white);
    }
    return before;
}

CGdiObject* CDC::SelectStockObject(int index) {
    static CPen noPen(PS_NULL, 1, 0), white(PS_SOLID, 1, RGB(255, 255, 255));
    static CBrush gray(RGB(128, 128, 128)), black(RGB(0, 0, 0)), none(0);
    switch (index) {
    case NULL_PEN:
    case WHITE_PEN:
        return SelectObject(index == NULL_PEN ? &noPen : &white);
    case BLACK_PEN:
        return SelectObject(static_cast<CPen*>(nullptr));
    case NULL_BRUSH:
        std::get<QBrush>(host::gdiObject(none.m_hObject)->value) = Qt::NoBrush;
        return SelectObject(&none);
    case GRAY_BRUSH:
    case BLACK_BRUSH:
        return SelectObject(index == GRAY_BRUSH ? &gray : &black);
    case WHITE_BRUSH:
        return SelectObject(static_cast<CBrush*>(nullptr));
    default:
        return SelectObject(static_cast<CFont*>(nullptr));
    }
}

COLORREF CDC::SetTextColor(COLORREF color) {
    return host::fromColor(std::exchange(m_hDC->textColor, host::toColor(color)));
}
COLORREF CDC::GetTextColor() const {
    return host::fromColor(m_hDC->textColor);
}
COLORREF CDC::SetBkColor(COLORREF color) {
    return host::fromColor(std::exchange(m_hDC->backColor, host::toColor(color)));
}
COLORREF CDC::GetBkColor() const {
    return host::fromColor(m_hDC->backColor);
}
int CDC::SetBkMode(int mode) {
    return std::exchange(m_hDC->opaque, mode == OPAQUE) ? OPAQUE : TRANSPARENT;
}

CPoint CDC::SetViewportOrg(int x, int y) {
    const QTransform before = m_hDC->painter->worldTransform();
    m_hDC->painter->setWorldTransform(QTransform::fromTranslate(x, y));
    return {static_cast<int>(before.dx()), static_cast<int>(before.dy())};
}

int CDC::IntersectClipRect(LPCRECT rect) {
    m_hDC->painter->setClipRect(host::toQRect(*rect), Qt::IntersectClip);
    return 2;
}

BOOL CDC::GetTextMetrics(TEXTMETRIC* metrics) const {
    const QFont font = m_hDC->painter->font();
    const QFontMetrics measured(font);
    *metrics = {};
    metrics->tmHeight = measured.height();
    metrics->tmAscent = measured.ascent();
    metrics->tmDescent = measured.descent();
    metrics->tmWeight = font.bold() ? FW_BOLD : FW_NORMAL;
    metrics->tmExternalLeading = measured.leading();
    metrics->tmInternalLeading = std::max(0, measured.height() - font.pixelSize());
    metrics->tmAveCharWidth = host::dialogUnits(font).x;
    metrics->tmMaxCharWidth = measured.maxWidth();
    return TRUE;
}

CPoint CDC::MoveTo(int x, int y) {
    const QPoint before = std::exchange(m_hDC->at, QPoint(x, y));
    return {before.x(), before.y()};
}

// The last pixel is not drawn.
BOOL CDC::LineTo(int x, int y) {
    const QPointF from = center(m_hDC->at.x(), m_hDC->at.y()), to = center(x, y);
    m_hDC->painter->drawLine(from, to);
    m_hDC->at = QPoint(x, y);
    return TRUE;
}

BOOL CDC::Polyline(const POINT* points, int count) {
    m_hDC->painter->drawPolyline(centers(points, count));
    return TRUE;
}
BOOL CDC::Polygon(const POINT* points, int count) {
    m_hDC->painter->drawPolygon(centers(points, count));
    return TRUE;
}
BOOL CDC::Rectangle(LPCRECT rect) {
    m_hDC->painter->drawRect(QRectF(host::toQRect(*rect)).adjusted(0.5, 0.5, -0.5, -0.5));
    return TRUE;
}
BOOL CDC::RoundRect(LPCRECT rect, POINT corner) {
    m_hDC->painter->drawRoundedRect(QRectF(host::toQRect(*rect)).adjusted(0.5, 0.5, -0.5, -0.5),
                                    corner.x / 2.0, corner.y / 2.0);
    return TRUE;
}
BOOL CDC::Ellipse(LPCRECT rect) {
    m_hDC->painter->drawEllipse(QRectF(host::toQRect(*rect)).adjusted(0.5, 0.5, -0.5, -0.5));
    return TRUE;
}
COLORREF CDC::SetPixel(int x, int y, COLORREF color) {
    m_hDC->painter->fillRect(x, y, 1, 1, host::toColor(color));
    return color;
}

void CDC::FillRect(LPCRECT rect, CBrush* brush) {
    m_hDC->painter->fillRect(host::toQRect(*rect), brushOf(*brush));
}
void CDC::FrameRect(LPCRECT rect, CBrush* brush) {
    const COLORREF color = host::fromColor(brushOf(*brush).color());
    Draw3dRect(rect, color, color);
}
void CDC::FillSolidRect(LPCRECT rect, COLORREF color) {
    m_hDC->painter->fillRect(host::toQRect(*rect), host::toColor(color));
}

void CDC::Draw3dRect(LPCRECT rect, COLORREF topLeft, COLORREF bottomRight) {
    const QRect r = host::toQRect(*rect);
    QPainter& p = *m_hDC->painter;
    p.fillRect(r.left(), r.top(), r.width() - 1, 1, host::toColor(topLeft));
    p.fillRect(r.left(), r.top(), 1, r.height() - 1, host::toColor(topLeft));
    p.fillRect(r.right(), r.top(), 1, r.height(), host::toColor(bottomRight));
    p.fillRect(r.left(), r.bottom(), r.width(), 1, host::toColor(bottomRight));
}

void CDC::DrawFocusRect(LPCRECT rect) {
    QPainter& p = *m_hDC->painter;
    p.save();
    p.setPen(QPen(Qt::black, 1, Qt::DotLine));
    p.setBrush(Qt::NoBrush);
    p.drawRect(QRectF(host::toQRect(*rect)).adjusted(0.5, 0.5, -0.5, -0.5));
    p.restore();
}

BOOL CDC::DrawFrameControl(LPRECT rect, UINT type, UINT state) {
    if (type != DFC_BUTTON)
        return FALSE;
    QStyleOptionButton option;
    option.rect = host::toQRect(*rect);
    option.palette = host::application().palette();
    option.state = (state & DFCS_INACTIVE) != 0 ? QStyle::State_None : QStyle::State_Enabled;
    option.state |= (state & DFCS_CHECKED) != 0 ? QStyle::State_On : QStyle::State_Off;
    option.state |= (state & DFCS_PUSHED) != 0 ? QStyle::State_Sunken : QStyle::State_None;
    QStyle& style = *QApplication::style();
    if ((state & DFCS_BUTTONPUSH) != 0)
        style.drawPrimitive(QStyle::PE_PanelButtonCommand, &option, m_hDC->painter);
    else
        style.drawPrimitive((state & DFCS_BUTTONRADIO) != 0 ? QStyle::PE_IndicatorRadioButton
                                                            : QStyle::PE_IndicatorCheckBox,
                            &option, m_hDC->painter);
    return TRUE;
}

BOOL CDC::DrawIcon(POINT at, HICON icon) {
    const QPixmap picture = host::iconPicture(icon);
    m_hDC->painter->drawPixmap(at.x, at.y, picture);
    return picture.isNull() ? FALSE : TRUE;
}

BOOL CDC::BitBlt(int x, int y, int width, int height, CDC* source, int sourceX, int sourceY,
                 DWORD operation) {
    return StretchBlt(x, y, width, height, source, sourceX, sourceY, width, height, operation);
}

BOOL CDC::StretchBlt(int x, int y, int width, int height, CDC* source, int sourceX, int sourceY,
                     int sourceWidth, int sourceHeight, DWORD operation) {
    if (source == nullptr || source->m_hDC->bitmap == nullptr || operation != SRCCOPY)
        return FALSE;
    const QImage image = host::imageOf(*source->m_hDC->bitmap);
    m_hDC->painter->setRenderHint(QPainter::SmoothPixmapTransform);
    m_hDC->painter->drawImage(QRect(x, y, width, height), image,
                              QRect(sourceX, sourceY, sourceWidth, sourceHeight));
    return TRUE;
}

int CDC::DrawText(const CString& text, LPRECT rect, UINT format) {
    QPainter& p = *m_hDC->painter;
    QString shown = host::toQt({text.GetString(), static_cast<std::size_t>(text.GetLength())});
    const int flags = textFlags(format);
    const QRect area = host::toQRect(*rect);
    if ((format & DT_CALCRECT) != 0) {
        const QRect bounds = QFontMetrics(p.font()).boundingRect(
            QRect(area.topLeft(), QSize(area.width() > 0 ? area.width() : 1 << 20, 1 << 20)), flags, shown);
        rect->right = rect->left + bounds.width();
        rect->bottom = rect->top + bounds.height();
        return bounds.height();
    }
    if ((format & DT_END_ELLIPSIS) != 0)
        shown = QFontMetrics(p.font()).elidedText(shown, Qt::ElideRight, area.width());
    p.save();
    if ((format & DT_NOCLIP) == 0)
        p.setClipRect(area, Qt::IntersectClip);
    QRect bounds;
    p.setPen(m_hDC->textColor);
    if (m_hDC->opaque)
        p.fillRect(p.boundingRect(area, flags, shown), m_hDC->backColor);
    p.drawText(area, flags, shown, &bounds);
    p.restore();
    return bounds.height();
}

BOOL CDC::TextOut(int x, int y, const CString& text) {
    const CSize size = GetTextExtent(text);
    RECT rect{x, y, x + size.cx, y + size.cy};
    DrawText(text, &rect, DT_NOPREFIX | DT_SINGLELINE | DT_NOCLIP);
    return TRUE;
}

CSize CDC::GetTextExtent(const CString& text) const {
    const QFontMetrics metrics(m_hDC->painter->font());
    return {metrics.horizontalAdvance(host::toQt(text.GetString())), metrics.height()};
}

CPaintDC::CPaintDC(CWnd* window) {
    HWND handle = window != nullptr ? window->m_hWnd : nullptr;
    if (handle != nullptr && handle->paintContext != nullptr) {
        m_hDC = handle->paintContext->m_hDC; // of the window, which lends it
    } else {
        host::application();
        m_hDC = host::newContext(scratchPainter());
        m_hDC->object = this;
    }
}

CPaintDC::~CPaintDC() {
    if (m_hDC->object != this)
        m_hDC = nullptr;
}

CClientDC::CClientDC(CWnd* window) {
    host::application();
    m_hDC = host::newContext(scratchPainter());
    m_hDC->object = this;
    if (window != nullptr && window->m_hWnd != nullptr && !window->m_hWnd->widget.isNull())
        m_hDC->painter->setFont(window->m_hWnd->widget->font());
}

CClientDC::~CClientDC() = default;
