// Result codes, result buffers and entity names of the C-style part of the interface.
#pragma once

#include "host/rx/acadstat.h"
#include "host/rx/acrx.h"

#include <cstdint>

using ads_real = double;
using ads_point = ads_real[3];
using ads_matrix = ads_real[4][4];
/// Names an entity or a selection set; the two numbers are the host's own.
using ads_name = std::int64_t[2];
using ads_callback = int (*)(struct resbuf*);

inline constexpr int X = 0;
inline constexpr int Y = 1;
inline constexpr int Z = 2;

struct ads_binary {
    short clen;
    char* buf;
};

union ads_u_val {
    ads_real rreal;
    ads_real rpoint[3];
    short rint;
    ACHAR* rstring;
    ads_name rlname;
    std::int32_t rlong;
    std::int64_t mnInt64;
    ads_binary rbinary;
    unsigned char ihandle[8];
};

/// A typed value in a list; strings and binary chunks are owned and freed by acutRelRb.
struct resbuf {
    resbuf* rbnext;
    short restype;
    ads_u_val resval;
};

inline constexpr int RTNONE = 5000;
inline constexpr int RTREAL = 5001;
inline constexpr int RTPOINT = 5002;
inline constexpr int RTSHORT = 5003;
inline constexpr int RTANG = 5004;
inline constexpr int RTSTR = 5005;
inline constexpr int RTENAME = 5006;
inline constexpr int RTPICKS = 5007;
inline constexpr int RTORINT = 5008;
inline constexpr int RT3DPOINT = 5009;
inline constexpr int RTLONG = 5010;
inline constexpr int RTVOID = 5014;
inline constexpr int RTLB = 5016;
inline constexpr int RTLE = 5017;
inline constexpr int RTDOTE = 5018;
inline constexpr int RTNIL = 5019;
inline constexpr int RTDXF0 = 5020;
inline constexpr int RTT = 5021;
inline constexpr int RTRESBUF = 5023;
inline constexpr int RTMODELESS = 5027;
inline constexpr int RTINT64 = 5031;
inline constexpr int RTNORM = 5100;
inline constexpr int RTERROR = -5001;
inline constexpr int RTCAN = -5002;
inline constexpr int RTREJ = -5003;
inline constexpr int RTFAIL = -5004;
inline constexpr int RTKWORD = -5005;
inline constexpr int RTINPUTTRUNCATED = -5008;

inline constexpr int RSRSLT = 1;
inline constexpr int RSERR = 3;

inline void ads_point_set(const ads_point from, ads_point to) {
    to[0] = from[0];
    to[1] = from[1];
    to[2] = from[2];
}
inline void ads_name_set(const ads_name from, ads_name to) {
    to[0] = from[0];
    to[1] = from[1];
}
inline void ads_name_clear(ads_name name) {
    name[0] = 0;
    name[1] = 0;
}
inline bool ads_name_equal(const ads_name a, const ads_name b) {
    return a[0] == b[0] && a[1] == b[1];
}
inline bool ads_name_nil(const ads_name name) {
    return name[0] == 0 && name[1] == 0;
}

/// A single zeroed buffer of the type; strings start null.
resbuf* acutNewRb(int type);
/// Frees a whole list with its strings.
int acutRelRb(resbuf* list);
/// A list from type and value pairs ended by 0 or RTNONE, values as C varargs of the type's kind.
resbuf* acutBuildList(int type, ...);
/// A copy of the text on the heap; freed with acutDelString or by acutRelRb.
Acad::ErrorStatus acutNewString(const ACHAR* text, ACHAR*& copy);
void acutDelString(ACHAR*& text);

namespace host {

/// How the value of a DXF group code or RT type is held in a resbuf.
enum class ResbufKind { none, real, point, int16, int32, int64, string, name, binary, handle };
ResbufKind resbufKind(int type);

struct ResbufDeleter {
    void operator()(resbuf* list) const { acutRelRb(list); }
};
/// Owns a whole list.
using ResbufList = std::unique_ptr<resbuf, ResbufDeleter>;

/// Appends at the end of a list under construction in constant time.
class ResbufBuilder {
public:
    ResbufBuilder& real(int type, double value);
    ResbufBuilder& point(int type, double x, double y, double z = 0.0);
    ResbufBuilder& integer(int type, std::int64_t value);
    ResbufBuilder& string(int type, std::wstring_view value);
    ResbufBuilder& name(int type, const ads_name value);
    ResbufBuilder& binary(int type, const void* bytes, std::size_t count);
    ResbufBuilder& mark(int type);
    ResbufBuilder& take(resbuf* list);
    bool empty() const { return mFirst == nullptr; }
    ResbufList release();

private:
    resbuf* add(int type);
    ResbufList mFirst;
    resbuf* mLast = nullptr;
};

/// A deep copy of one buffer (rbnext null) or of a list.
ResbufList copyResbuf(const resbuf& buffer);
ResbufList copyResbufList(const resbuf* list);

} // namespace host
