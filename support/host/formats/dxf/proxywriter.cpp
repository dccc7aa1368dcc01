// Objects of loaded modules as proxies: what other programs can keep and show, and what comes alive again
// where the module is.
#include "host/formats/dxf/writer.h"

namespace host::dxf {

void Writer::writeProxy(const AcDbObject& object, const ProxyData& proxy) {
    const auto* entity = AcDbEntity::cast(&object);
    if (entity != nullptr) {
        record("ACAD_PROXY_ENTITY");
        entity->AcDbEntity::dxfOutFields(&mOut);
    } else {
        record("ACAD_PROXY_OBJECT");
        object.AcDbObject::dxfOutFields(&mOut);
    }
    proxy.dxfOut(&mOut, mClasses.classNumber(object), entity != nullptr);
    mOut.writeKept(object.xdataGroups());
}

void Writer::writeCustom(const AcDbObject& object) {
    if (mSource == nullptr) {
        mSource = drawingSource(mDatabase);
    }
    writeProxy(object, proxyDataOf(const_cast<AcDbObject&>(object), mSource.get()));
}

} // namespace host::dxf
