// CResbuf: an owned chain of result buffers.
#pragma once

#include "host/arx.h"

/// Frees its chain in the end. Moves, but does not copy.
class QDV_EXPORT CResbuf {
public:
    CResbuf() = default;
    /// Takes over a chain; null is the empty one.
    explicit CResbuf(resbuf* chain) : mChain(chain) {}
    /// A selection filter for the entities of a class, by its name in DXF files.
    explicit CResbuf(const AcRxClass* entityClass);
    CResbuf(const CResbuf&) = delete;
    CResbuf& operator=(const CResbuf&) = delete;
    CResbuf(CResbuf&& other) noexcept : mChain(other.Release()) {}
    CResbuf& operator=(CResbuf&& other) noexcept;
    ~CResbuf() { acutRelRb(mChain); }

    resbuf* Get() const { return mChain; }
    operator const resbuf*() const { return mChain; }
    bool IsNull() const { return mChain == nullptr; }
    /// Type of the first buffer; RTNONE for the empty chain.
    int Type() const { return mChain != nullptr ? mChain->restype : RTNONE; }
    /// The first buffer of a type (a DXF group code); null when there is none.
    const resbuf* Find(int type) const;
    resbuf* Release();

private:
    resbuf* mChain = nullptr;
};
