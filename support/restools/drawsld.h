// Pictures of slides and drawings, drawn into a rectangle.
#pragma once

#include "host/arx.h"

#include <memory>
#include <string_view>

class QDV_EXPORT CDrawSld {
public:
    CDrawSld();
    ~CDrawSld();
    CDrawSld(CDrawSld&&) noexcept;
    CDrawSld& operator=(CDrawSld&&) noexcept;

    /// A slide file (.sld, or .slb(NAME)) or a drawing, which is drawn for a picture of about this size.
    /// False when there is no picture; Fault() says why in one line.
    bool Load(const ACHAR* path, CSize size);
    /// The bytes of a slide file.
    bool LoadBytes(std::string_view bytes);
    bool IsEmpty() const { return mSlide == nullptr; }
    const CString& Fault() const { return mFault; }

    /// As large as it fits, in the middle; colour 7 shows against the background.
    void Draw(CDC& context, const CRect& rect, COLORREF background) const;

private:
    std::unique_ptr<host::Slide> mSlide;
    CString mFault;
};
