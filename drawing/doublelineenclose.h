// The double-line wall: command V7_DLEnclose.
#pragma once

#include "drawing/mlinejig.h"

/// Draws a wall as two parallel lines: a multiline that follows the picked points and is exploded in the end.
/// Width and alignment are remembered with the user's profile.
void DrawDoubleLineEnclose();

class CDoubleLineEnclose : public CAcDbMlineJig {
public:
    /// Takes the remembered alignment and width.
    CDoubleLineEnclose();

    const ACHAR* LayerName() const override { return L"$Enclose"; }
    const ACHAR* DisplayName() const override { return L"双线围墙"; }
    void SaveSettings() const;
};
