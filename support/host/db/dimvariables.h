// The variables of dimensions in one table: name, group code, member. Styles, overrides in extended data,
// the drawing's current values and the dimensions themselves all go through it.
#pragma once

#include "host/db/headervars.h"
#include "host/gi/gi.h"

#include <bitset>
#include <span>

class AcDbEntity;

namespace host {

/// Values as a style has them; those that a file leaves out are these. Lengths are before DIMSCALE, colours
/// are indices.
struct DimVariables {
    AcString post, apost;
    double scale = 1.0, asz = 0.18, exo = 0.0625, dli = 0.38, exe = 0.18, rnd = 0.0, dle = 0.0, tp = 0.0,
           tm = 0.0, fxl = 1.0, jogang = 0.78539816339744828;
    Adesk::Int16 tfill = 0, tfillclr = 0, tol = 0, lim = 0, tih = 1, toh = 1, se1 = 0, se2 = 0, tad = 0,
                 zin = 0, azin = 0, arcsym = 0;
    double txt = 0.18, cen = 0.09, tsz = 0.0, altf = 25.4, lfac = 1.0, tvp = 0.0, tfac = 1.0, gap = 0.09,
           altrnd = 0.0;
    Adesk::Int16 alt = 0, altd = 2, tofl = 0, sah = 0, tix = 0, soxd = 0, clrd = 0, clre = 0, clrt = 0,
                 adec = 0;
    Adesk::Int16 dec = 4, tdec = 4, altu = 2, alttd = 2, aunit = 0, frac = 0, lunit = 2, dsep = 46, tmove = 0,
                 just = 0, sd1 = 0, sd2 = 0, tolj = 1, tzin = 0, altz = 0, alttz = 0, upt = 0, atfit = 3,
                 fxlon = 0, txtdirection = 0;
    AcDbObjectId txsty, ldrblk, blk, blk1, blk2, ltype, ltex1, ltex2;
    Adesk::Int16 lwd = -2, lwe = -2;

    template <class Self, class Walk>
    static void fields(Self& data, Walk& walk);
};

struct DimVariable {
    const char* name; ///< of the system variable, without DIM
    short code;       ///< group code in styles and overrides
    std::variant<double DimVariables::*, Adesk::Int16 DimVariables::*, AcString DimVariables::*,
                 AcDbObjectId DimVariables::*>
        member;
};

/// In the order in which files list them.
std::span<const DimVariable> dimVariables();
inline constexpr std::size_t dimVariableCount = 77;
using DimVariableSet = std::bitset<dimVariableCount>;

/// Position of a variable by its group code, or of its member.
std::optional<std::size_t> findDimVariable(short code);
template <class T>
std::size_t dimVariableIndex(T DimVariables::*member) {
    const std::span<const DimVariable> all = dimVariables();
    std::size_t index = 0;
    while (index < all.size() && !(all[index].member == decltype(DimVariable::member)(member))) {
        ++index;
    }
    return index;
}

/// Takes the group's value; false when the code is no variable's.
bool takeDimVariable(DimVariables& variables, DimVariableSet& given, const DxfGroup& group);
/// Writes the variables of the set and those that differ from their defaults; every one when `all`.
void writeDimVariables(AcDbDxfFiler* filer, const DimVariables& variables, const DimVariableSet& given);
bool equalDimVariable(const DimVariables& a, const DimVariables& b, std::size_t index);
void copyDimVariable(DimVariables& to, const DimVariables& from, std::size_t index);
/// eOutOfRange for a number beyond the limits of its system variable.
Acad::ErrorStatus checkDimVariable(const DimVariables& variables, std::size_t index);

/// The drawing's current values: its header.
DimVariables currentDimVariables(const AcDbDatabase& database);
/// Makes the values current. Recorded for undo.
Acad::ErrorStatus setCurrentDimVariables(AcDbDatabase& database, const DimVariables& variables);

/// Overrides that extended data of an entity holds (application ACAD, list DSTYLE).
DimVariableSet applyDimOverrides(DimVariables& variables, const GroupList& xdata, AcDbDatabase* database);
/// What holds for an annotation: its style, or the current values when it has none, and its overrides.
DimVariables annotationVariables(const AcDbEntity& annotation, AcDbObjectId style);
/// The extended data with one override set to the value it has in `variables`; everything else stays as it
/// is.
GroupList withDimOverride(const GroupList& xdata, const DimVariables& variables, std::size_t index);

/// Reading and setting by the names of the system variables, for styles and entities alike. The owner has
/// `dimVariables()` and `setDimVariable(variables, index)`.
template <class Owner>
class DimVariableAccess {
    template <class T>
    T dimValue(T DimVariables::*member) const {
        return static_cast<const Owner&>(*this).dimVariables().*member;
    }
    template <class T>
    Acad::ErrorStatus putDimValue(T DimVariables::*member, const T& value) {
        DimVariables changed = static_cast<const Owner&>(*this).dimVariables();
        changed.*member = value;
        const std::size_t index = dimVariableIndex(member);
        const Acad::ErrorStatus status = checkDimVariable(changed, index);
        return status == Acad::eOk ? static_cast<Owner&>(*this).setDimVariable(changed, index) : status;
    }
    using V = DimVariables;
    static Adesk::Int16 dimFlag(bool on) { return on ? Adesk::Int16{1} : Adesk::Int16{0}; }
    static Adesk::Int16 dimNumber(int value) {
        return static_cast<Adesk::Int16>(value < -32768 ? -32768 : value > 32767 ? 32767 : value);
    }

public:
    int dimadec() const { return dimValue(&V::adec); }
    bool dimalt() const { return dimValue(&V::alt) != 0; }
    int dimaltd() const { return dimValue(&V::altd); }
    double dimaltf() const { return dimValue(&V::altf); }
    double dimaltrnd() const { return dimValue(&V::altrnd); }
    int dimalttd() const { return dimValue(&V::alttd); }
    int dimalttz() const { return dimValue(&V::alttz); }
    int dimaltu() const { return dimValue(&V::altu); }
    int dimaltz() const { return dimValue(&V::altz); }
    AcString dimapost() const { return dimValue(&V::apost); }
    int dimarcsym() const { return dimValue(&V::arcsym); }
    double dimasz() const { return dimValue(&V::asz); }
    int dimatfit() const { return dimValue(&V::atfit); }
    int dimaunit() const { return dimValue(&V::aunit); }
    int dimazin() const { return dimValue(&V::azin); }
    AcDbObjectId dimblk() const { return dimValue(&V::blk); }
    AcDbObjectId dimblk1() const { return dimValue(&V::blk1); }
    AcDbObjectId dimblk2() const { return dimValue(&V::blk2); }
    double dimcen() const { return dimValue(&V::cen); }
    AcCmColor dimclrd() const { return dimColor(dimValue(&V::clrd)); }
    AcCmColor dimclre() const { return dimColor(dimValue(&V::clre)); }
    AcCmColor dimclrt() const { return dimColor(dimValue(&V::clrt)); }
    int dimdec() const { return dimValue(&V::dec); }
    double dimdle() const { return dimValue(&V::dle); }
    double dimdli() const { return dimValue(&V::dli); }
    ACHAR dimdsep() const { return static_cast<ACHAR>(dimValue(&V::dsep)); }
    double dimexe() const { return dimValue(&V::exe); }
    double dimexo() const { return dimValue(&V::exo); }
    int dimfrac() const { return dimValue(&V::frac); }
    double dimfxlen() const { return dimValue(&V::fxl); }
    bool dimfxlenOn() const { return dimValue(&V::fxlon) != 0; }
    double dimgap() const { return dimValue(&V::gap); }
    double dimjogang() const { return dimValue(&V::jogang); }
    int dimjust() const { return dimValue(&V::just); }
    AcDbObjectId dimldrblk() const { return dimValue(&V::ldrblk); }
    double dimlfac() const { return dimValue(&V::lfac); }
    bool dimlim() const { return dimValue(&V::lim) != 0; }
    AcDbObjectId dimltex1() const { return dimValue(&V::ltex1); }
    AcDbObjectId dimltex2() const { return dimValue(&V::ltex2); }
    AcDbObjectId dimltype() const { return dimValue(&V::ltype); }
    int dimlunit() const { return dimValue(&V::lunit); }
    AcDb::LineWeight dimlwd() const { return static_cast<AcDb::LineWeight>(dimValue(&V::lwd)); }
    AcDb::LineWeight dimlwe() const { return static_cast<AcDb::LineWeight>(dimValue(&V::lwe)); }
    AcString dimpost() const { return dimValue(&V::post); }
    double dimrnd() const { return dimValue(&V::rnd); }
    bool dimsah() const { return dimValue(&V::sah) != 0; }
    double dimscale() const { return dimValue(&V::scale); }
    bool dimsd1() const { return dimValue(&V::sd1) != 0; }
    bool dimsd2() const { return dimValue(&V::sd2) != 0; }
    bool dimse1() const { return dimValue(&V::se1) != 0; }
    bool dimse2() const { return dimValue(&V::se2) != 0; }
    bool dimsoxd() const { return dimValue(&V::soxd) != 0; }
    int dimtad() const { return dimValue(&V::tad); }
    int dimtdec() const { return dimValue(&V::tdec); }
    double dimtfac() const { return dimValue(&V::tfac); }
    int dimtfill() const { return dimValue(&V::tfill); }
    AcCmColor dimtfillclr() const { return dimColor(dimValue(&V::tfillclr)); }
    bool dimtih() const { return dimValue(&V::tih) != 0; }
    bool dimtix() const { return dimValue(&V::tix) != 0; }
    double dimtm() const { return dimValue(&V::tm); }
    int dimtmove() const { return dimValue(&V::tmove); }
    bool dimtofl() const { return dimValue(&V::tofl) != 0; }
    bool dimtoh() const { return dimValue(&V::toh) != 0; }
    bool dimtol() const { return dimValue(&V::tol) != 0; }
    int dimtolj() const { return dimValue(&V::tolj); }
    double dimtp() const { return dimValue(&V::tp); }
    double dimtsz() const { return dimValue(&V::tsz); }
    double dimtvp() const { return dimValue(&V::tvp); }
    AcDbObjectId dimtxsty() const { return dimValue(&V::txsty); }
    double dimtxt() const { return dimValue(&V::txt); }
    bool dimtxtdirection() const { return dimValue(&V::txtdirection) != 0; }
    int dimtzin() const { return dimValue(&V::tzin); }
    bool dimupt() const { return dimValue(&V::upt) != 0; }
    int dimzin() const { return dimValue(&V::zin); }

    Acad::ErrorStatus setDimadec(int v) { return putDimValue(&V::adec, dimNumber(v)); }
    Acad::ErrorStatus setDimalt(bool v) { return putDimValue(&V::alt, dimFlag(v)); }
    Acad::ErrorStatus setDimaltd(int v) { return putDimValue(&V::altd, dimNumber(v)); }
    Acad::ErrorStatus setDimaltf(double v) { return putDimValue(&V::altf, v); }
    Acad::ErrorStatus setDimaltrnd(double v) { return putDimValue(&V::altrnd, v); }
    Acad::ErrorStatus setDimalttd(int v) { return putDimValue(&V::alttd, dimNumber(v)); }
    Acad::ErrorStatus setDimalttz(int v) { return putDimValue(&V::alttz, dimNumber(v)); }
    Acad::ErrorStatus setDimaltu(int v) { return putDimValue(&V::altu, dimNumber(v)); }
    Acad::ErrorStatus setDimaltz(int v) { return putDimValue(&V::altz, dimNumber(v)); }
    Acad::ErrorStatus setDimapost(const ACHAR* v) { return putDimValue(&V::apost, AcString(v)); }
    Acad::ErrorStatus setDimarcsym(int v) { return putDimValue(&V::arcsym, dimNumber(v)); }
    Acad::ErrorStatus setDimasz(double v) { return putDimValue(&V::asz, v); }
    Acad::ErrorStatus setDimatfit(int v) { return putDimValue(&V::atfit, dimNumber(v)); }
    Acad::ErrorStatus setDimaunit(int v) { return putDimValue(&V::aunit, dimNumber(v)); }
    Acad::ErrorStatus setDimazin(int v) { return putDimValue(&V::azin, dimNumber(v)); }
    Acad::ErrorStatus setDimblk(AcDbObjectId v) { return putDimValue(&V::blk, v); }
    Acad::ErrorStatus setDimblk1(AcDbObjectId v) { return putDimValue(&V::blk1, v); }
    Acad::ErrorStatus setDimblk2(AcDbObjectId v) { return putDimValue(&V::blk2, v); }
    Acad::ErrorStatus setDimcen(double v) { return putDimValue(&V::cen, v); }
    Acad::ErrorStatus setDimclrd(const AcCmColor& v) { return putDimValue(&V::clrd, dimColorIndex(v)); }
    Acad::ErrorStatus setDimclre(const AcCmColor& v) { return putDimValue(&V::clre, dimColorIndex(v)); }
    Acad::ErrorStatus setDimclrt(const AcCmColor& v) { return putDimValue(&V::clrt, dimColorIndex(v)); }
    Acad::ErrorStatus setDimdec(int v) { return putDimValue(&V::dec, dimNumber(v)); }
    Acad::ErrorStatus setDimdle(double v) { return putDimValue(&V::dle, v); }
    Acad::ErrorStatus setDimdli(double v) { return putDimValue(&V::dli, v); }
    Acad::ErrorStatus setDimdsep(ACHAR v) { return putDimValue(&V::dsep, dimNumber(v)); }
    Acad::ErrorStatus setDimexe(double v) { return putDimValue(&V::exe, v); }
    Acad::ErrorStatus setDimexo(double v) { return putDimValue(&V::exo, v); }
    Acad::ErrorStatus setDimfrac(int v) { return putDimValue(&V::frac, dimNumber(v)); }
    Acad::ErrorStatus setDimfxlen(double v) { return putDimValue(&V::fxl, v); }
    Acad::ErrorStatus setDimfxlenOn(bool v) { return putDimValue(&V::fxlon, dimFlag(v)); }
    Acad::ErrorStatus setDimgap(double v) { return putDimValue(&V::gap, v); }
    Acad::ErrorStatus setDimjogang(double v) { return putDimValue(&V::jogang, v); }
    Acad::ErrorStatus setDimjust(int v) { return putDimValue(&V::just, dimNumber(v)); }
    Acad::ErrorStatus setDimldrblk(AcDbObjectId v) { return putDimValue(&V::ldrblk, v); }
    Acad::ErrorStatus setDimlfac(double v) { return putDimValue(&V::lfac, v); }
    Acad::ErrorStatus setDimlim(bool v) { return putDimValue(&V::lim, dimFlag(v)); }
    Acad::ErrorStatus setDimltex1(AcDbObjectId v) { return putDimValue(&V::ltex1, v); }
    Acad::ErrorStatus setDimltex2(AcDbObjectId v) { return putDimValue(&V::ltex2, v); }
    Acad::ErrorStatus setDimltype(AcDbObjectId v) { return putDimValue(&V::ltype, v); }
    Acad::ErrorStatus setDimlunit(int v) { return putDimValue(&V::lunit, dimNumber(v)); }
    Acad::ErrorStatus setDimlwd(AcDb::LineWeight v) { return putDimValue(&V::lwd, dimNumber(v)); }
    Acad::ErrorStatus setDimlwe(AcDb::LineWeight v) { return putDimValue(&V::lwe, dimNumber(v)); }
    Acad::ErrorStatus setDimpost(const ACHAR* v) { return putDimValue(&V::post, AcString(v)); }
    Acad::ErrorStatus setDimrnd(double v) { return putDimValue(&V::rnd, v); }
    Acad::ErrorStatus setDimsah(bool v) { return putDimValue(&V::sah, dimFlag(v)); }
    Acad::ErrorStatus setDimscale(double v) { return putDimValue(&V::scale, v); }
    Acad::ErrorStatus setDimsd1(bool v) { return putDimValue(&V::sd1, dimFlag(v)); }
    Acad::ErrorStatus setDimsd2(bool v) { return putDimValue(&V::sd2, dimFlag(v)); }
    Acad::ErrorStatus setDimse1(bool v) { return putDimValue(&V::se1, dimFlag(v)); }
    Acad::ErrorStatus setDimse2(bool v) { return putDimValue(&V::se2, dimFlag(v)); }
    Acad::ErrorStatus setDimsoxd(bool v) { return putDimValue(&V::soxd, dimFlag(v)); }
    Acad::ErrorStatus setDimtad(int v) { return putDimValue(&V::tad, dimNumber(v)); }
    Acad::ErrorStatus setDimtdec(int v) { return putDimValue(&V::tdec, dimNumber(v)); }
    Acad::ErrorStatus setDimtfac(double v) { return putDimValue(&V::tfac, v); }
    Acad::ErrorStatus setDimtfill(int v) { return putDimValue(&V::tfill, dimNumber(v)); }
    Acad::ErrorStatus setDimtfillclr(const AcCmColor& v) {
        return putDimValue(&V::tfillclr, dimColorIndex(v));
    }
    Acad::ErrorStatus setDimtih(bool v) { return putDimValue(&V::tih, dimFlag(v)); }
    Acad::ErrorStatus setDimtix(bool v) { return putDimValue(&V::tix, dimFlag(v)); }
    Acad::ErrorStatus setDimtm(double v) { return putDimValue(&V::tm, v); }
    Acad::ErrorStatus setDimtmove(int v) { return putDimValue(&V::tmove, dimNumber(v)); }
    Acad::ErrorStatus setDimtofl(bool v) { return putDimValue(&V::tofl, dimFlag(v)); }
    Acad::ErrorStatus setDimtoh(bool v) { return putDimValue(&V::toh, dimFlag(v)); }
    Acad::ErrorStatus setDimtol(bool v) { return putDimValue(&V::tol, dimFlag(v)); }
    Acad::ErrorStatus setDimtolj(int v) { return putDimValue(&V::tolj, dimNumber(v)); }
    Acad::ErrorStatus setDimtp(double v) { return putDimValue(&V::tp, v); }
    Acad::ErrorStatus setDimtsz(double v) { return putDimValue(&V::tsz, v); }
    Acad::ErrorStatus setDimtvp(double v) { return putDimValue(&V::tvp, v); }
    Acad::ErrorStatus setDimtxsty(AcDbObjectId v) { return putDimValue(&V::txsty, v); }
    Acad::ErrorStatus setDimtxt(double v) { return putDimValue(&V::txt, v); }
    Acad::ErrorStatus setDimtxtdirection(bool v) { return putDimValue(&V::txtdirection, dimFlag(v)); }
    Acad::ErrorStatus setDimtzin(int v) { return putDimValue(&V::tzin, dimNumber(v)); }
    Acad::ErrorStatus setDimupt(bool v) { return putDimValue(&V::upt, dimFlag(v)); }
    Acad::ErrorStatus setDimzin(int v) { return putDimValue(&V::zin, dimNumber(v)); }

private:
    static AcCmColor dimColor(Adesk::Int16 index) {
        AcCmEntityColor color;
        color.setColorIndex(index);
        return AcCmColor(color);
    }
    static Adesk::Int16 dimColorIndex(const AcCmColor& color) { return color.entityColor().colorIndex(); }
};

template <class Self, class Walk>
void DimVariables::fields(Self& data, Walk& walk) {
    for (const DimVariable& variable : host::dimVariables()) {
        std::visit(
            [&](auto member) {
                if constexpr (std::is_same_v<decltype(member), AcDbObjectId DimVariables::*>) {
                    walk.hardPointer(data.*member);
                } else {
                    walk(data.*member);
                }
            },
            variable.member);
    }
}

} // namespace host
