// Pens, brushes, fonts and bitmaps, the system's colours and measures.
#include "host/mfc/gdi.h"

#include "host/mfc/modulestate.h"
#include "host/mfc/widgets/application.h"
#include "host/mfc/widgets/context.h"
#include "host/mfc/widgets/window.h"
#include "host/win/resources.h"

#include <QApplication>
#include <QScreen>
#include <cstring>
#include <map>

namespace {

HGDIOBJ newObject(std::variant<QPen, QBrush, QFont, QImage> value) {
    return new host::GdiObject{std::move(value)};
}

template <class Kind>
Kind* valueOf(HGDIOBJ handle) {
    host::GdiObject* object = host::gdiObject(handle);
    return object != nullptr ? std::get_if<Kind>(&object->value) : nullptr;
}

Qt::PenStyle penStyle(int style) {
    switch (style) {
    case PS_DASH:
        return Qt::DashLine;
    case PS_DOT:
        return Qt::DotLine;
    case PS_DASHDOT:
        return Qt::DashDotLine;
    case PS_NULL:
        return Qt::NoPen;
    default:
        return Qt::SolidLine;
    }
}

template <class Number>
Number numberAt(std::span<const std::byte> bytes, std::size_t at) {
    Number value{};
    if (at + sizeof value <= bytes.size())
        std::memcpy(&value, bytes.data() + at, sizeof value);
    return value;
}

} // namespace

COLORREF GetSysColor(int index) {
    const QPalette palette = host::application().palette();
    const auto of = [&](QPalette::ColorRole role) { return host::fromColor(palette.color(role)); };
    switch (index) {
    case COLOR_WINDOW:
        return of(QPalette::Base);
    case COLOR_WINDOWTEXT:
        return of(QPalette::Text);
    case COLOR_BTNTEXT:
        return of(QPalette::ButtonText);
    case COLOR_HIGHLIGHT:
        return of(QPalette::Highlight);
    case COLOR_HIGHLIGHTTEXT:
        return of(QPalette::HighlightedText);
    case COLOR_GRAYTEXT:
        return host::fromColor(palette.color(QPalette::Disabled, QPalette::Text));
    case COLOR_BTNSHADOW:
        return RGB(160, 160, 160);
    case COLOR_3DDKSHADOW:
    case COLOR_WINDOWFRAME:
        return RGB(105, 105, 105);
    case COLOR_BTNHIGHLIGHT:
        return RGB(255, 255, 255);
    case COLOR_3DLIGHT:
        return RGB(227, 227, 227);
    case COLOR_INFOTEXT:
        return of(QPalette::ToolTipText);
    case COLOR_INFOBK:
        return of(QPalette::ToolTipBase);
    default:
        return of(QPalette::Button);
    }
}

int GetSystemMetrics(int index) {
    switch (index) {
    case SM_CXSCREEN:
    case SM_CYSCREEN: {
        host::application();
        const QSize size = QGuiApplication::primaryScreen()->size();
        return index == SM_CXSCREEN ? size.width() : size.height();
    }
    case SM_CXVSCROLL:
    case SM_CYHSCROLL:
        return 17;
    case SM_CYCAPTION:
    case SM_CYSMCAPTION:
        return 23;
    case SM_CXBORDER:
    case SM_CYBORDER:
        return 1;
    case SM_CXEDGE:
    case SM_CYEDGE:
        return 2;
    case SM_CXSMICON:
    case SM_CYSMICON:
        return 16;
    case SM_CXMENUCHECK:
    case SM_CYMENUCHECK:
        return 15;
    default:
        return 32; // icons and cursors
    }
}

CGdiObject::~CGdiObject() {
    DeleteObject();
}

BOOL CGdiObject::Attach(HGDIOBJ object) {
    DeleteObject();
    m_hObject = object;
    return object != nullptr ? TRUE : FALSE;
}

HGDIOBJ CGdiObject::Detach() {
    return std::exchange(m_hObject, nullptr);
}

BOOL CGdiObject::DeleteObject() {
    const bool had = m_hObject != nullptr;
    delete host::gdiObject(std::exchange(m_hObject, nullptr));
    return had ? TRUE : FALSE;
}

BOOL CPen::CreatePen(int style, int width, COLORREF color) {
    return Attach(newObject(
        QPen(QBrush(host::toColor(color)), std::max(1, width), penStyle(style), Qt::FlatCap, Qt::MiterJoin)));
}

BOOL CBrush::CreateSolidBrush(COLORREF color) {
    return Attach(newObject(QBrush(host::toColor(color))));
}

BOOL CFont::CreateFontIndirect(const LOGFONT* font) {
    host::application();
    QFont made = host::dialogFont(font->lfFaceName, 9, font->lfWeight, font->lfItalic != 0);
    if (font->lfHeight < 0)
        made.setPixelSize(-font->lfHeight);
    else if (font->lfHeight > 0)
        made.setPixelSize(std::max(1, font->lfHeight * 3 / 4));
    made.setUnderline(font->lfUnderline != 0);
    made.setStrikeOut(font->lfStrikeOut != 0);
    return Attach(newObject(made));
}

BOOL CFont::CreateFont(int height, int width, int escapement, int orientation, int weight, BYTE italic,
                       BYTE underline, BYTE strikeOut, BYTE charSet, BYTE outPrecision, BYTE clipPrecision,
                       BYTE quality, BYTE pitchAndFamily, LPCTSTR face) {
    LOGFONT font{height,    width,   escapement,   orientation,   weight,  italic,         underline,
                 strikeOut, charSet, outPrecision, clipPrecision, quality, pitchAndFamily, {}};
    const std::wstring name = std::wstring(face != nullptr ? face : L"").substr(0, LF_FACESIZE - 1);
    std::copy(name.begin(), name.end(), font.lfFaceName);
    return CreateFontIndirect(&font);
}

BOOL CFont::CreatePointFont(int size, LPCTSTR face, CDC*) {
    return CreateFont(-(size * 96 + 360) / 720, 0, 0, 0, FW_NORMAL, 0, 0, 0, DEFAULT_CHARSET, 0, 0, 0, 0,
                      face);
}

int CFont::GetLogFont(LOGFONT* font) const {
    *font = {};
    const QFont* held = valueOf<QFont>(m_hObject);
    if (held == nullptr)
        return 0;
    font->lfHeight = -held->pixelSize();
    font->lfWeight = held->bold() ? FW_BOLD : FW_NORMAL;
    font->lfItalic = held->italic() ? 1 : 0;
    font->lfUnderline = held->underline() ? 1 : 0;
    font->lfCharSet = DEFAULT_CHARSET;
    return sizeof *font;
}

BOOL CBitmap::LoadBitmap(LPCTSTR name) {
    for (const HINSTANCE module : host::resourceModules()) {
        if (QImage image = host::bitmapResource(module, name); !image.isNull())
            return Attach(newObject(std::move(image)));
    }
    return FALSE;
}

BOOL CBitmap::CreateCompatibleBitmap(CDC*, int width, int height) {
    QImage image(std::max(1, width), std::max(1, height), QImage::Format_RGB32);
    image.fill(Qt::black);
    return Attach(newObject(std::move(image)));
}

int CBitmap::GetBitmap(BITMAP* bitmap) const {
    *bitmap = {};
    const QImage* image = valueOf<QImage>(m_hObject);
    if (image == nullptr)
        return 0;
    bitmap->bmWidth = image->width();
    bitmap->bmHeight = image->height();
    bitmap->bmWidthBytes = static_cast<LONG>(image->bytesPerLine());
    bitmap->bmPlanes = 1;
    bitmap->bmBitsPixel = 32;
    return sizeof *bitmap;
}

// Icons are shared: each is made once and stays.
HICON LoadIcon(HINSTANCE module, LPCWSTR name) {
    static std::map<const std::byte*, QPixmap> icons;
    host::application();
    const std::span<const std::byte> group = host::resource(module, RT_GROUP_ICON, name);
    if (group.empty())
        return nullptr;
    const auto [found, isNew] = icons.try_emplace(group.data());
    if (isNew)
        found->second = host::iconResource(module, name);
    return found->second.isNull() ? nullptr : reinterpret_cast<HICON>(&found->second);
}

BOOL DestroyIcon(HICON icon) {
    return icon != nullptr ? TRUE : FALSE;
}

namespace host {

GdiObject* gdiObject(HGDIOBJ handle) {
    return static_cast<GdiObject*>(handle);
}

QFont fontOf(HFONT font) {
    const QFont* held = valueOf<QFont>(font);
    return held != nullptr ? *held : dialogFont(L"", 9, FW_NORMAL, false);
}

HFONT newFont(const QFont& font) {
    return static_cast<HFONT>(newObject(font));
}

QPixmap iconPicture(HICON icon) {
    return icon != nullptr ? *reinterpret_cast<QPixmap*>(icon) : QPixmap();
}

QImage imageOf(HBITMAP bitmap) {
    const QImage* image = valueOf<QImage>(bitmap);
    return image != nullptr ? *image : QImage();
}

// A bitmap resource is a bitmap file without its first header of 14 bytes, which tells where the pixels
// begin.
QImage bitmapResource(HINSTANCE module, LPCWSTR name) {
    const std::span<const std::byte> bytes = resource(module, RT_BITMAP, name);
    const auto headerSize = numberAt<std::uint32_t>(bytes, 0);
    if (bytes.size() < 40 || headerSize > bytes.size())
        return {};
    const auto depth = numberAt<std::uint16_t>(bytes, 14);
    const auto colors = numberAt<std::uint32_t>(bytes, 32);
    const std::uint64_t palette = depth <= 8 ? (colors != 0 ? colors : 1u << depth) * 4ull : 0;
    const auto size = static_cast<std::uint32_t>(bytes.size() + 14);
    const auto pixels = static_cast<std::uint32_t>(14 + headerSize + palette);
    QByteArray file("BM");
    file.append(reinterpret_cast<const char*>(&size), 4).append(4, '\0');
    file.append(reinterpret_cast<const char*>(&pixels), 4);
    file.append(reinterpret_cast<const char*>(bytes.data()), static_cast<qsizetype>(bytes.size()));
    return QImage::fromData(file, "BMP");
}

// An icon group lists its pictures with the numbers of their resources; together they are an icon file again.
QPixmap iconResource(HINSTANCE module, LPCWSTR name) {
    const std::span<const std::byte> group = resource(module, RT_GROUP_ICON, name);
    const auto count = numberAt<std::uint16_t>(group, 4);
    int best = -1, bestWidth = 0;
    for (int i = 0; i < count; ++i) {
        const int width = std::max(1, int{numberAt<std::uint8_t>(group, 6 + std::size_t(i) * 14)});
        if (best < 0 || (width >= 32 && (width < bestWidth || bestWidth < 32)))
            best = i, bestWidth = width;
    }
    if (best < 0)
        return {};
    const std::size_t entry = 6 + std::size_t(best) * 14;
    if (entry + 14 > group.size())
        return {};
    const auto bytes =
        resource(module, RT_ICON, MAKEINTRESOURCEW(numberAt<std::uint16_t>(group, entry + 12)));
    const auto size = static_cast<std::uint32_t>(bytes.size());
    constexpr std::uint32_t offset = 22;
    QByteArray file;
    file.append("\0\0\1\0\1\0", 6);
    file.append(reinterpret_cast<const char*>(group.data() + entry), 8);
    file.append(reinterpret_cast<const char*>(&size), 4).append(reinterpret_cast<const char*>(&offset), 4);
    file.append(reinterpret_cast<const char*>(bytes.data()), static_cast<qsizetype>(bytes.size()));
    return QPixmap::fromImage(QImage::fromData(file, "ICO"));
}

} // namespace host
