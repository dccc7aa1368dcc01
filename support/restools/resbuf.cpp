// Chains of result buffers.
#include "restools/resbuf.h"

CResbuf::CResbuf(const AcRxClass* entityClass) {
    if (entityClass != nullptr && entityClass->dxfName() != nullptr) {
        mChain = acutBuildList(RTDXF0, entityClass->dxfName(), RTNONE);
    }
}

CResbuf& CResbuf::operator=(CResbuf&& other) noexcept {
    if (this != &other) {
        acutRelRb(mChain);
        mChain = other.Release();
    }
    return *this;
}

const resbuf* CResbuf::Find(int type) const {
    const resbuf* buffer = mChain;
    while (buffer != nullptr && buffer->restype != type) {
        buffer = buffer->rbnext;
    }
    return buffer;
}

resbuf* CResbuf::Release() {
    resbuf* chain = mChain;
    mChain = nullptr;
    return chain;
}
