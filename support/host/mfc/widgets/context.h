// What handles of drawing stand for.
#pragma once

#include "host/mfc/gdi.h"

#include <QBrush>
#include <QFont>
#include <QImage>
#include <QPainter>
#include <QPen>
#include <QPixmap>
#include <memory>
#include <variant>
#include <vector>

namespace host {

// What an HGDIOBJ (HPEN, HBRUSH, HFONT, HBITMAP) points to.
struct GdiObject {
    std::variant<QPen, QBrush, QFont, QImage> value;
};
GdiObject* gdiObject(HGDIOBJ handle);
QFont fontOf(HFONT font); // of dialogs for null
HFONT newFont(const QFont& font);
QPixmap iconPicture(HICON icon); // null for null
// Pictures of the resources; null when there is none or it is damaged.
QImage bitmapResource(HINSTANCE module, LPCWSTR name);
QPixmap iconResource(HINSTANCE module, LPCWSTR name);
QImage imageOf(HBITMAP bitmap);

// A context that draws with the painter, which must outlive it.
HDC newContext(QPainter* painter);
void deleteContext(HDC context);

} // namespace host
