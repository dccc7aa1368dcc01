// Numbers of the module's resources and of the controls in its dialogs.
#pragma once

#define IDD_LINE_PARA 107
#define IDC_START_WIDTH 1002
#define IDC_END_WIDTH 1003
#define IDC_X_INCREMENT 1004
#define IDC_Y_INCREMENT 1005
#define IDC_APPLY_WIDTHS 1006
#define IDC_USE_SNAP 1007
#define IDC_X_INCREMENT_LABEL 1008
#define IDC_Y_INCREMENT_LABEL 1009

#define IDD_DRAW_RIVER 211
#define IDC_RIVER_STYLES 227
#define IDC_RIVER_ALIGNMENT 228
#define IDR_RIVER_STYLE_4 214
#define IDR_RIVER_STYLE_1 215
#define IDR_RIVER_STYLE_2 216
#define IDR_RIVER_STYLE_3 217
