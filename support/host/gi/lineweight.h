// Lineweights of the drawing: hundredths of a millimetre, or one of three indirect values.
#pragma once

namespace AcDb {

enum LineWeight {
    kLnWt000 = 0,
    kLnWt005 = 5,
    kLnWt009 = 9,
    kLnWt013 = 13,
    kLnWt015 = 15,
    kLnWt018 = 18,
    kLnWt020 = 20,
    kLnWt025 = 25,
    kLnWt030 = 30,
    kLnWt035 = 35,
    kLnWt040 = 40,
    kLnWt050 = 50,
    kLnWt053 = 53,
    kLnWt060 = 60,
    kLnWt070 = 70,
    kLnWt080 = 80,
    kLnWt090 = 90,
    kLnWt100 = 100,
    kLnWt106 = 106,
    kLnWt120 = 120,
    kLnWt140 = 140,
    kLnWt158 = 158,
    kLnWt200 = 200,
    kLnWt211 = 211,
    kLnWtByLayer = -1,
    kLnWtByBlock = -2,
    kLnWtByLwDefault = -3,
    kLnWtByDIPs = -4
};

} // namespace AcDb

namespace host {

// The nearest weight of the standard list to a number of hundredths of a millimetre; indirect values are
// kept, other negative numbers give the default weight.
AcDb::LineWeight nearestLineWeight(int hundredths) noexcept;

} // namespace host
