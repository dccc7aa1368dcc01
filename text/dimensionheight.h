// Text heights of dimensions: command V7_Scadimh.
#pragma once

/// Multiplies the text height of the selected dimensions by a factor, as an override of each; their style
/// stays.
void ScaleDimensionTextHeights();
