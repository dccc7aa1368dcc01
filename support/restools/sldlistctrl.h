// A list of pictures with their labels under them.
#pragma once

#include "restools/drawsld.h"

#include <string>
#include <vector>

/// Takes the place of a list control with large icons. Pictures are read when they are first seen; one that
/// can't be read shows why.
class QDV_EXPORT CSldListCtrl : public CListCtrl {
public:
    /// Pixels at 96 dots an inch.
    CSldListCtrl(int pictureWidth, int pictureHeight, int cellWidth, int cellHeight);

    void SetSizes(int pictureWidth, int pictureHeight, int cellWidth, int cellHeight);
    /// A slide file or a drawing; at the end. The index.
    int AddFile(const ACHAR* label, const ACHAR* path);
    /// The bytes of a slide file.
    int AddSlide(const ACHAR* label, std::string bytes);
    void RemoveAll();

    /// The selected item when exactly one is; else -1.
    int GetSelectedItem() const;
    /// Selects it alone and scrolls it into view; -1 selects none.
    void SelectItem(int index);

protected:
    DECLARE_MESSAGE_MAP()
    void PreSubclassWindow() override;
    afx_msg void OnCustomDraw(NMHDR* header, LRESULT* result);

private:
    struct Picture {
        std::wstring path;
        std::string bytes;
        CDrawSld slide;
        bool isRead = false;
    };
    int add(const ACHAR* label, Picture picture);
    const CDrawSld& slideOf(std::size_t index);
    void draw(CDC& context, const CRect& cell, std::size_t index, bool selected, bool focused);

    CSize mPicture;
    CSize mCell;
    std::vector<Picture> mPictures; ///< an item's data is the index here
};
