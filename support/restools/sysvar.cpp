// System variables as result buffers of the fitting type.
#include "restools/sysvar.h"

#include <limits>

namespace {

/// The variable's value; null when there is none of that name.
CResbuf read(const ACHAR* name) {
    CResbuf value(acutNewRb(RTNONE));
    return acedGetVar(name, value.Get()) == RTNORM ? std::move(value) : CResbuf();
}

bool write(const ACHAR* name, const resbuf& value) {
    return acedSetVar(name, &value) == RTNORM;
}

bool writePoint(const ACHAR* name, int type, double x, double y, double z) {
    resbuf value{};
    value.restype = static_cast<short>(type);
    value.resval.rpoint[X] = x;
    value.resval.rpoint[Y] = y;
    value.resval.rpoint[Z] = z;
    return write(name, value);
}

} // namespace

bool GetVar(const ACHAR* name, int& value) {
    const CResbuf found = read(name);
    if (found.Type() == RTSHORT) {
        value = found.Get()->resval.rint;
        return true;
    }
    if (found.Type() == RTLONG) {
        value = found.Get()->resval.rlong;
        return true;
    }
    return false;
}

bool GetVar(const ACHAR* name, bool& value) {
    int number = 0;
    if (!GetVar(name, number)) {
        return false;
    }
    value = number != 0;
    return true;
}

bool GetVar(const ACHAR* name, double& value) {
    const CResbuf found = read(name);
    if (found.Type() != RTREAL) {
        return false;
    }
    value = found.Get()->resval.rreal;
    return true;
}

bool GetVar(const ACHAR* name, AcString& value) {
    const CResbuf found = read(name);
    if (found.Type() != RTSTR) {
        return false;
    }
    value = found.Get()->resval.rstring;
    return true;
}

bool GetVar(const ACHAR* name, AcGePoint3d& value) {
    const CResbuf found = read(name);
    if (found.Type() != RTPOINT && found.Type() != RT3DPOINT) {
        return false;
    }
    const ads_point& point = found.Get()->resval.rpoint;
    value.set(point[X], point[Y], found.Type() == RT3DPOINT ? point[Z] : 0.0);
    return true;
}

bool GetVar(const ACHAR* name, AcGePoint2d& value) {
    AcGePoint3d point;
    if (!GetVar(name, point)) {
        return false;
    }
    value.set(point.x, point.y);
    return true;
}

AcString GetVar(const ACHAR* name) {
    AcString value;
    GetVar(name, value);
    return value;
}

bool SetVar(const ACHAR* name, int value) {
    resbuf buffer{};
    if (value >= std::numeric_limits<short>::min() && value <= std::numeric_limits<short>::max()) {
        buffer.restype = RTSHORT;
        buffer.resval.rint = static_cast<short>(value);
    } else {
        buffer.restype = RTLONG;
        buffer.resval.rlong = value;
    }
    return write(name, buffer);
}

bool SetVar(const ACHAR* name, bool value) {
    return SetVar(name, value ? 1 : 0);
}

bool SetVar(const ACHAR* name, double value) {
    resbuf buffer{};
    buffer.restype = RTREAL;
    buffer.resval.rreal = value;
    return write(name, buffer);
}

bool SetVar(const ACHAR* name, const ACHAR* value) {
    AcString text(value);
    resbuf buffer{};
    buffer.restype = RTSTR;
    buffer.resval.rstring = text.getBuffer();
    return write(name, buffer);
}

bool SetVar(const ACHAR* name, const AcGePoint3d& value) {
    return writePoint(name, RT3DPOINT, value.x, value.y, value.z);
}

bool SetVar(const ACHAR* name, const AcGePoint2d& value) {
    return writePoint(name, RTPOINT, value.x, value.y, 0.0);
}

void CSysVar::Save() {
    mOld = read(mName);
}

CSysVar::~CSysVar() {
    if (!mOld.IsNull()) {
        write(mName, *mOld.Get());
    }
}
