// The variables of dimensions in one table: name, group code, member. Styles, overrides in extended data,
// the drawing's current values and the dimensions themselves all go through it.
#pragma once

#include "host/db/headervars.h"

#include <bitset>
#include <span>

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
std::size_t dimVariableIndex(T DimVariables::* member) {
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

/// Overrides that extended data of an entity holds (application ACAD, list DSTYLE).
DimVariableSet applyDimOverrides(DimVariables& variables, const GroupList& xdata, AcDbDatabase* database);
/// The extended data with one override set to the value it has in `variables`; everything else stays as it
/// is.
GroupList withDimOverride(const GroupList& xdata, const DimVariables& variables, std::size_t index);

/// Reading and setting by the names of the system variables, for styles and entities alike. The owner has
/// `dimVariables()` and `setDimVariable(variables, index)`.
template <class Owner>
class DimVariableAccess {
    template <class T>
    T get(T DimVariables::* member) const {
        return static_cast<const Owner&>(*this).dimVariables().*member;
    }
    template <class T>
    Acad::ErrorStatus set(T DimVariables::* member, const T& value) {
        DimVariables changed = static_cast<const Owner&>(*this).dimVariables();
        changed.*member = value;
        const std::size_t index = dimVariableIndex(member);
        const Acad::ErrorStatus status = checkDimVariable(changed, index);
        return status == Acad::eOk ? static_cast<Owner&>(*this).setDimVariable(changed, index) : status;
    }
    using V = DimVariables;
    using Int = Adesk::Int16;
    static Int flag(bool on) { return on ? Int{1} : Int{0}; }
    static Int whole(int value) {
        return static_cast<Int>(value < -32768 ? -32768 : value > 32767 ? 32767 : value);
    }

public:
    int dimadec() const { return get(&V::adec); }
    bool dimalt() const { return get(&V::alt) != 0; }
    int dimaltd() const { return get(&V::altd); }
    double dimaltf() const { return get(&V::altf); }
    double dimaltrnd() const { return get(&V::altrnd); }
    int dimalttd() const { return get(&V::alttd); }
    int dimalttz() const { return get(&V::alttz); }
    int dimaltu() const { return get(&V::altu); }
    int dimaltz() const { return get(&V::altz); }
    AcString dimapost() const { return get(&V::apost); }
    int dimarcsym() const { return get(&V::arcsym); }
    double dimasz() const { return get(&V::asz); }
    int dimatfit() const { return get(&V::atfit); }
    int dimaunit() const { return get(&V::aunit); }
    int dimazin() const { return get(&V::azin); }
    AcDbObjectId dimblk() const { return get(&V::blk); }
    AcDbObjectId dimblk1() const { return get(&V::blk1); }
    AcDbObjectId dimblk2() const { return get(&V::blk2); }
    double dimcen() const { return get(&V::cen); }
    AcCmColor dimclrd() const { return color(get(&V::clrd)); }
    AcCmColor dimclre() const { return color(get(&V::clre)); }
    AcCmColor dimclrt() const { return color(get(&V::clrt)); }
    int dimdec() const { return get(&V::dec); }
    double dimdle() const { return get(&V::dle); }
    double dimdli() const { return get(&V::dli); }
    ACHAR dimdsep() const { return static_cast<ACHAR>(get(&V::dsep)); }
    double dimexe() const { return get(&V::exe); }
    double dimexo() const { return get(&V::exo); }
    int dimfrac() const { return get(&V::frac); }
    double dimfxlen() const { return get(&V::fxl); }
    bool dimfxlenOn() const { return get(&V::fxlon) != 0; }
    double dimgap() const { return get(&V::gap); }
    double dimjogang() const { return get(&V::jogang); }
    int dimjust() const { return get(&V::just); }
    AcDbObjectId dimldrblk() const { return get(&V::ldrblk); }
    double dimlfac() const { return get(&V::lfac); }
    bool dimlim() const { return get(&V::lim) != 0; }
    AcDbObjectId dimltex1() const { return get(&V::ltex1); }
    AcDbObjectId dimltex2() const { return get(&V::ltex2); }
    AcDbObjectId dimltype() const { return get(&V::ltype); }
    int dimlunit() const { return get(&V::lunit); }
    AcDb::LineWeight dimlwd() const { return static_cast<AcDb::LineWeight>(get(&V::lwd)); }
    AcDb::LineWeight dimlwe() const { return static_cast<AcDb::LineWeight>(get(&V::lwe)); }
    AcString dimpost() const { return get(&V::post); }
    double dimrnd() const { return get(&V::rnd); }
    bool dimsah() const { return get(&V::sah) != 0; }
    double dimscale() const { return get(&V::scale); }
    bool dimsd1() const { return get(&V::sd1) != 0; }
    bool dimsd2() const { return get(&V::sd2) != 0; }
    bool dimse1() const { return get(&V::se1) != 0; }
    bool dimse2() const { return get(&V::se2) != 0; }
    bool dimsoxd() const { return get(&V::soxd) != 0; }
    int dimtad() const { return get(&V::tad); }
    int dimtdec() const { return get(&V::tdec); }
    double dimtfac() const { return get(&V::tfac); }
    int dimtfill() const { return get(&V::tfill); }
    AcCmColor dimtfillclr() const { return color(get(&V::tfillclr)); }
    bool dimtih() const { return get(&V::tih) != 0; }
    bool dimtix() const { return get(&V::tix) != 0; }
    double dimtm() const { return get(&V::tm); }
    int dimtmove() const { return get(&V::tmove); }
    bool dimtofl() const { return get(&V::tofl) != 0; }
    bool dimtoh() const { return get(&V::toh) != 0; }
    bool dimtol() const { return get(&V::tol) != 0; }
    int dimtolj() const { return get(&V::tolj); }
    double dimtp() const { return get(&V::tp); }
    double dimtsz() const { return get(&V::tsz); }
    double dimtvp() const { return get(&V::tvp); }
    AcDbObjectId dimtxsty() const { return get(&V::txsty); }
    double dimtxt() const { return get(&V::txt); }
    bool dimtxtdirection() const { return get(&V::txtdirection) != 0; }
    int dimtzin() const { return get(&V::tzin); }
    bool dimupt() const { return get(&V::upt) != 0; }
    int dimzin() const { return get(&V::zin); }

    Acad::ErrorStatus setDimadec(int v) { return set(&V::adec, whole(v)); }
    Acad::ErrorStatus setDimalt(bool v) { return set(&V::alt, flag(v)); }
    Acad::ErrorStatus setDimaltd(int v) { return set(&V::altd, whole(v)); }
    Acad::ErrorStatus setDimaltf(double v) { return set(&V::altf, v); }
    Acad::ErrorStatus setDimaltrnd(double v) { return set(&V::altrnd, v); }
    Acad::ErrorStatus setDimalttd(int v) { return set(&V::alttd, whole(v)); }
    Acad::ErrorStatus setDimalttz(int v) { return set(&V::alttz, whole(v)); }
    Acad::ErrorStatus setDimaltu(int v) { return set(&V::altu, whole(v)); }
    Acad::ErrorStatus setDimaltz(int v) { return set(&V::altz, whole(v)); }
    Acad::ErrorStatus setDimapost(const ACHAR* v) { return set(&V::apost, AcString(v)); }
    Acad::ErrorStatus setDimarcsym(int v) { return set(&V::arcsym, whole(v)); }
    Acad::ErrorStatus setDimasz(double v) { return set(&V::asz, v); }
    Acad::ErrorStatus setDimatfit(int v) { return set(&V::atfit, whole(v)); }
    Acad::ErrorStatus setDimaunit(int v) { return set(&V::aunit, whole(v)); }
    Acad::ErrorStatus setDimazin(int v) { return set(&V::azin, whole(v)); }
    Acad::ErrorStatus setDimblk(AcDbObjectId v) { return set(&V::blk, v); }
    Acad::ErrorStatus setDimblk1(AcDbObjectId v) { return set(&V::blk1, v); }
    Acad::ErrorStatus setDimblk2(AcDbObjectId v) { return set(&V::blk2, v); }
    Acad::ErrorStatus setDimcen(double v) { return set(&V::cen, v); }
    Acad::ErrorStatus setDimclrd(const AcCmColor& v) { return set(&V::clrd, index(v)); }
    Acad::ErrorStatus setDimclre(const AcCmColor& v) { return set(&V::clre, index(v)); }
    Acad::ErrorStatus setDimclrt(const AcCmColor& v) { return set(&V::clrt, index(v)); }
    Acad::ErrorStatus setDimdec(int v) { return set(&V::dec, whole(v)); }
    Acad::ErrorStatus setDimdle(double v) { return set(&V::dle, v); }
    Acad::ErrorStatus setDimdli(double v) { return set(&V::dli, v); }
    Acad::ErrorStatus setDimdsep(ACHAR v) { return set(&V::dsep, whole(v)); }
    Acad::ErrorStatus setDimexe(double v) { return set(&V::exe, v); }
    Acad::ErrorStatus setDimexo(double v) { return set(&V::exo, v); }
    Acad::ErrorStatus setDimfrac(int v) { return set(&V::frac, whole(v)); }
    Acad::ErrorStatus setDimfxlen(double v) { return set(&V::fxl, v); }
    Acad::ErrorStatus setDimfxlenOn(bool v) { return set(&V::fxlon, flag(v)); }
    Acad::ErrorStatus setDimgap(double v) { return set(&V::gap, v); }
    Acad::ErrorStatus setDimjogang(double v) { return set(&V::jogang, v); }
    Acad::ErrorStatus setDimjust(int v) { return set(&V::just, whole(v)); }
    Acad::ErrorStatus setDimldrblk(AcDbObjectId v) { return set(&V::ldrblk, v); }
    Acad::ErrorStatus setDimlfac(double v) { return set(&V::lfac, v); }
    Acad::ErrorStatus setDimlim(bool v) { return set(&V::lim, flag(v)); }
    Acad::ErrorStatus setDimltex1(AcDbObjectId v) { return set(&V::ltex1, v); }
    Acad::ErrorStatus setDimltex2(AcDbObjectId v) { return set(&V::ltex2, v); }
    Acad::ErrorStatus setDimltype(AcDbObjectId v) { return set(&V::ltype, v); }
    Acad::ErrorStatus setDimlunit(int v) { return set(&V::lunit, whole(v)); }
    Acad::ErrorStatus setDimlwd(AcDb::LineWeight v) { return set(&V::lwd, whole(v)); }
    Acad::ErrorStatus setDimlwe(AcDb::LineWeight v) { return set(&V::lwe, whole(v)); }
    Acad::ErrorStatus setDimpost(const ACHAR* v) { return set(&V::post, AcString(v)); }
    Acad::ErrorStatus setDimrnd(double v) { return set(&V::rnd, v); }
    Acad::ErrorStatus setDimsah(bool v) { return set(&V::sah, flag(v)); }
    Acad::ErrorStatus setDimscale(double v) { return set(&V::scale, v); }
    Acad::ErrorStatus setDimsd1(bool v) { return set(&V::sd1, flag(v)); }
    Acad::ErrorStatus setDimsd2(bool v) { return set(&V::sd2, flag(v)); }
    Acad::ErrorStatus setDimse1(bool v) { return set(&V::se1, flag(v)); }
    Acad::ErrorStatus setDimse2(bool v) { return set(&V::se2, flag(v)); }
    Acad::ErrorStatus setDimsoxd(bool v) { return set(&V::soxd, flag(v)); }
    Acad::ErrorStatus setDimtad(int v) { return set(&V::tad, whole(v)); }
    Acad::ErrorStatus setDimtdec(int v) { return set(&V::tdec, whole(v)); }
    Acad::ErrorStatus setDimtfac(double v) { return set(&V::tfac, v); }
    Acad::ErrorStatus setDimtfill(int v) { return set(&V::tfill, whole(v)); }
    Acad::ErrorStatus setDimtfillclr(const AcCmColor& v) { return set(&V::tfillclr, index(v)); }
    Acad::ErrorStatus setDimtih(bool v) { return set(&V::tih, flag(v)); }
    Acad::ErrorStatus setDimtix(bool v) { return set(&V::tix, flag(v)); }
    Acad::ErrorStatus setDimtm(double v) { return set(&V::tm, v); }
    Acad::ErrorStatus setDimtmove(int v) { return set(&V::tmove, whole(v)); }
    Acad::ErrorStatus setDimtofl(bool v) { return set(&V::tofl, flag(v)); }
    Acad::ErrorStatus setDimtoh(bool v) { return set(&V::toh, flag(v)); }
    Acad::ErrorStatus setDimtol(bool v) { return set(&V::tol, flag(v)); }
    Acad::ErrorStatus setDimtolj(int v) { return set(&V::tolj, whole(v)); }
    Acad::ErrorStatus setDimtp(double v) { return set(&V::tp, v); }
    Acad::ErrorStatus setDimtsz(double v) { return set(&V::tsz, v); }
    Acad::ErrorStatus setDimtvp(double v) { return set(&V::tvp, v); }
    Acad::ErrorStatus setDimtxsty(AcDbObjectId v) { return set(&V::txsty, v); }
    Acad::ErrorStatus setDimtxt(double v) { return set(&V::txt, v); }
    Acad::ErrorStatus setDimtxtdirection(bool v) { return set(&V::txtdirection, flag(v)); }
    Acad::ErrorStatus setDimtzin(int v) { return set(&V::tzin, whole(v)); }
    Acad::ErrorStatus setDimupt(bool v) { return set(&V::upt, flag(v)); }
    Acad::ErrorStatus setDimzin(int v) { return set(&V::zin, whole(v)); }

private:
    static AcCmColor color(Int index) {
        AcCmEntityColor color;
        color.setColorIndex(index);
        return AcCmColor(color);
    }
    static Int index(const AcCmColor& color) { return color.entityColor().colorIndex(); }
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
