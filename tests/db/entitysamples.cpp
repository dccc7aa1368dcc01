#include "entitysamples.h"

#include "host/rx/text.h"

#include <memory>

namespace testing_entities {
namespace {

const AcGeVector3d tilted = AcGeVector3d(0.3, -0.4, 0.8).normal();

void setCommon(AcDbEntity& entity, Drawing& drawing) {
    entity.setLayer(drawing.layer);
    entity.setLinetype(drawing.database.byBlockLinetype());
    entity.setColor(AcCmColor(AcCmEntityColor(10, 200, 30)));
    entity.setLinetypeScale(2.5);
    entity.setLineWeight(AcDb::kLnWt050);
    entity.setVisibility(AcDb::kInvisible);
}

void setCommonPlain(AcDbEntity& entity, Drawing& drawing) {
    entity.setLayer(drawing.database.layerZero());
    entity.setLinetype(drawing.database.byLayerLinetype());
}

/// A sample from a function that sets the rich fields.
template <class T>
Sample sample(const char* name, const wchar_t* className, const char* dxfName,
              std::function<void(T&, Drawing&)> enrich, std::function<void(T&, Drawing&)> plain = {}) {
    return {name, className, dxfName,
            [plain](Drawing& drawing) -> AcDbEntity* {
                auto* entity = new T;
                setCommonPlain(*entity, drawing);
                if (plain) {
                    plain(*entity, drawing);
                }
                return entity;
            },
            [enrich](Drawing& drawing) -> AcDbEntity* {
                auto* entity = new T;
                setCommon(*entity, drawing);
                enrich(*entity, drawing);
                return entity;
            }};
}

void enrichText(AcDbText& text, Drawing& drawing) {
    text.setTextStyle(drawing.style);
    text.setNormal(tilted);
    text.setHeight(2.5);
    text.setTextString(L"围墙 Wall^x");
    text.setWidthFactor(0.8);
    text.setOblique(0.2);
    text.setRotation(0.7);
    text.setThickness(1.5);
    text.mirrorInX(true);
    text.setHorizontalMode(AcDb::kTextCenter);
    text.setVerticalMode(AcDb::kTextTop);
    text.setAlignmentPoint({10, 20, 3});
}

template <class T>
void plainText(T& text, Drawing& drawing) {
    text.setTextStyle(drawing.database.standardTextStyle());
    text.setHeight(1.0);
    text.setTextString(L"A");
}

template <class T>
void enrichCircle(T& circle, Drawing&) {
    circle.setNormal(tilted);
    circle.setCenter({10, -20, 5});
    circle.setRadius(7.25);
    circle.setThickness(-2);
}

void enrichTrace(AcDbTrace& trace, Drawing&) {
    trace.setNormal(tilted);
    const AcGeMatrix3d plane = AcGeMatrix3d::planeToWorld(tilted);
    const AcGePoint3d corners[] = {{0, 0, 3}, {10, 1, 3}, {1, 5, 3}, {9, 6, 3}};
    for (Adesk::UInt16 index = 0; index < 4; ++index) {
        trace.setPointAt(index, plane * corners[index]);
    }
    trace.setThickness(4);
}

} // namespace

Drawing::Drawing() {
    const host::Opened<AcDbLayerTable> layers(database.layerTableId(), AcDb::kForWrite);
    auto* record = new AcDbLayerTableRecord;
    record->setName(L"道路");
    layers->add(layer, record);
    record->close();
    const host::Opened<AcDbTextStyleTable> styles(database.textStyleTableId(), AcDb::kForWrite);
    auto* textStyle = new AcDbTextStyleTableRecord;
    textStyle->setName(L"注记");
    textStyle->setFileName(L"txt.shx");
    textStyle->setBigFontFileName(L"gbcbig.shx");
    styles->add(style, textStyle);
    textStyle->close();
    const host::Opened<AcDbBlockTable> blocks(database.blockTableId(), AcDb::kForWrite);
    AcDbObjectId inner;
    auto* nested = new AcDbBlockTableRecord;
    nested->setName(L"INNER");
    blocks->add(inner, nested);
    auto* line = new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(4, 0, 0));
    nested->appendAcDbEntity(line);
    line->close();
    nested->close();
    auto* outer = new AcDbBlockTableRecord;
    outer->setName(L"OUTER");
    outer->setOrigin({1, 1, 0});
    blocks->add(block, outer);
    auto* arc = new AcDbArc(AcGePoint3d(2, 2, 0), 1.5, 0.0, 2.0);
    outer->appendAcDbEntity(arc);
    arc->close();
    auto* reference = new AcDbBlockReference(AcGePoint3d(5, 0, 0), inner);
    reference->setRotation(0.5);
    outer->appendAcDbEntity(reference);
    reference->close();
    outer->close();
}

AcDbObjectId Drawing::append(AcDbEntity* entity) {
    const host::Opened<AcDbBlockTableRecord> space(database.modelSpaceId(), AcDb::kForWrite);
    AcDbObjectId id;
    space->appendAcDbEntity(id, entity);
    entity->close();
    return id;
}

const std::vector<Sample>& samples() {
    static const std::vector<Sample> all = {
        sample<AcDbLine>("Line", L"AcDbLine", "LINE",
                         [](AcDbLine& line, Drawing&) {
                             line.setStartPoint({1, 2, 3});
                             line.setEndPoint({11, -7, 5});
                             line.setNormal(tilted);
                             line.setThickness(2);
                         }),
        sample<AcDbPoint>("Point", L"AcDbPoint", "POINT",
                          [](AcDbPoint& point, Drawing&) {
                              point.setPosition({1, 2, 3});
                              point.setNormal(tilted);
                              point.setThickness(2);
                              point.setEcsRotation(0.5);
                          }),
        sample<AcDbCircle>("Circle", L"AcDbCircle", "CIRCLE", enrichCircle<AcDbCircle>),
        sample<AcDbArc>("Arc", L"AcDbArc", "ARC",
                        [](AcDbArc& arc, Drawing& drawing) {
                            enrichCircle(arc, drawing);
                            arc.setStartAngle(5.5);
                            arc.setEndAngle(1.25);
                        }),
        sample<AcDbPolyline>("Polyline", L"AcDbPolyline", "LWPOLYLINE",
                             [](AcDbPolyline& polyline, Drawing&) {
                                 polyline.setNormal(tilted);
                                 polyline.setElevation(4);
                                 polyline.setThickness(3);
                                 polyline.setPlinegen(true);
                                 polyline.addVertexAt(0, {0, 0}, 0.5, 0.1, 0.2, 11);
                                 polyline.addVertexAt(1, {10, 0}, 0, 0.2, 0.4, 12);
                                 polyline.addVertexAt(2, {12, 7}, -1.2, 0, 0, 13);
                                 polyline.addVertexAt(3, {3, 9}, 0, 0.5, 0.5, 14);
                                 polyline.setClosed(true);
                             }),
        sample<AcDb2dPolyline>("Polyline2d", L"AcDb2dPolyline", "POLYLINE",
                               [](AcDb2dPolyline& polyline, Drawing&) {
                                   polyline.setNormal(tilted);
                                   polyline.setElevation(4);
                                   polyline.setThickness(3);
                                   polyline.setLinetypeGenerationOn();
                                   polyline.setDefaultStartWidth(0.3);
                                   polyline.setDefaultEndWidth(0.4);
                                   polyline.appendVertex(new AcDb2dVertex({0, 0, 4}, 0.5, 0.1, 0.2));
                                   polyline.appendVertex(new AcDb2dVertex({10, 0, 4}, 0, 0.2, 0));
                                   polyline.appendVertex(new AcDb2dVertex({12, 7, 4}, -1.2));
                                   polyline.makeClosed();
                               }),
        sample<AcDb2dVertex>(
            "Vertex2d", L"AcDb2dVertex", "VERTEX",
            [](AcDb2dVertex& vertex, Drawing&) {
                vertex.setPosition({1, 2, 3});
                vertex.setBulge(0.25);
                vertex.setStartWidth(1);
                vertex.setEndWidth(2);
                vertex.setTangent(0.75);
                vertex.useTangent();
                vertex.setVertexIdentifier(9);
            },
            [](AcDb2dVertex& vertex, Drawing&) {
                vertex.setStartWidth(0);
                vertex.setEndWidth(0);
            }),
        sample<AcDbText>("Text", L"AcDbText", "TEXT", enrichText, plainText<AcDbText>),
        sample<AcDbAttributeDefinition>(
            "AttributeDefinition", L"AcDbAttributeDefinition", "ATTDEF",
            [](AcDbAttributeDefinition& definition, Drawing& drawing) {
                definition.setTag(L"图号");
                definition.setPrompt(L"输入图号");
                enrichText(definition, drawing);
                definition.setConstant(true);
                definition.setPreset(true);
                definition.setFieldLength(12);
                definition.setLockPositionInBlock(true);
            },
            [](AcDbAttributeDefinition& definition, Drawing& drawing) {
                plainText(definition, drawing);
                definition.setTag(L"T");
            }),
        sample<AcDbAttribute>(
            "Attribute", L"AcDbAttribute", "ATTRIB",
            [](AcDbAttribute& attribute, Drawing& drawing) {
                attribute.setTag(L"图号");
                enrichText(attribute, drawing);
                attribute.setInvisible(true);
                attribute.setFieldLength(12);
                attribute.setLockPositionInBlock(true);
            },
            [](AcDbAttribute& attribute, Drawing& drawing) {
                plainText(attribute, drawing);
                attribute.setTag(L"T");
            }),
        sample<AcDbBlockReference>(
            "BlockReference", L"AcDbBlockReference", "INSERT",
            [](AcDbBlockReference& reference, Drawing& drawing) {
                reference.setBlockTableRecord(drawing.block);
                reference.setNormal(tilted);
                reference.setPosition({10, 20, 3});
                reference.setScaleFactors({2, -2, 2});
                reference.setRotation(1.1);
                auto* attribute = new AcDbAttribute({11, 21, 0}, L"7", L"NO", drawing.style);
                attribute->setHeight(2);
                reference.appendAttribute(attribute);
            },
            [](AcDbBlockReference& reference, Drawing& drawing) {
                reference.setBlockTableRecord(drawing.block);
            }),
        sample<AcDbTrace>("Trace", L"AcDbTrace", "TRACE", enrichTrace),
        sample<AcDbSolid>("Solid", L"AcDbSolid", "SOLID",
                          [](AcDbSolid& solid, Drawing& d) { enrichTrace(solid, d); }),
        sample<AcDbEllipse>("Ellipse", L"AcDbEllipse", "ELLIPSE",
                            [](AcDbEllipse& ellipse, Drawing&) {
                                ellipse.set({1, 2, 3}, tilted, tilted.perpVector() * 7, 0.4, 0.5, 4.0);
                            }),
        sample<AcDbSpline>(
            "Spline", L"AcDbSpline", "SPLINE",
            [](AcDbSpline& spline, Drawing&) {
                spline.setFitData({{0, 0, 0}, {10, 5, 1}, {20, -5, 2}, {25, 0, 3}}, 3, 0.001, {1, 1, 0},
                                  {0, -1, 0});
            },
            [](AcDbSpline& spline, Drawing&) {
                spline.setNurbsData(2, true, false, false, {{0, 0, 0}, {5, 8, 0}, {10, 0, 0}},
                                    {0, 0, 0, 1, 1, 1}, {1, 0.5, 1});
            }),
        sample<AcDbRay>("Ray", L"AcDbRay", "RAY",
                        [](AcDbRay& ray, Drawing&) {
                            ray.setBasePoint({1, 2, 3});
                            ray.setUnitDir({1, 2, 2});
                        }),
        sample<AcDbXline>("Xline", L"AcDbXline", "XLINE",
                          [](AcDbXline& xline, Drawing&) {
                              xline.setBasePoint({1, 2, 3});
                              xline.setUnitDir({-1, 2, 2});
                          }),
        sample<AcDb3dPolyline>("Polyline3d", L"AcDb3dPolyline", "POLYLINE",
                               [](AcDb3dPolyline& polyline, Drawing&) {
                                   for (const AcGePoint3d& point :
                                        {AcGePoint3d(0, 0, 0), AcGePoint3d(10, 0, 5),
                                         AcGePoint3d(10, 8, 2)}) {
                                       polyline.appendVertex(new AcDb3dPolylineVertex(point));
                                   }
                                   polyline.makeClosed();
                                   polyline.splineFit(AcDb::k3dQuadSplinePoly, 4);
                               }),
        sample<AcDb3dPolylineVertex>("Vertex3d", L"AcDb3dPolylineVertex", "VERTEX",
                                     [](AcDb3dPolylineVertex& vertex, Drawing&) {
                                         vertex.setPosition({1, 2, 3});
                                         vertex.setVertexType(AcDb::k3dControlVertex);
                                     }),
        sample<AcDbFace>("Face", L"AcDbFace", "3DFACE",
                         [](AcDbFace& face, Drawing&) {
                             for (Adesk::UInt16 index = 0; index < 4; ++index) {
                                 face.setVertexAt(index, {index * 3.0, (index % 3) * 2.0, index * 1.0});
                             }
                             face.makeEdgeInvisibleAt(1);
                         }),
    };
    return all;
}

std::string sampleName(const testing::TestParamInfo<Sample>& info) {
    return info.param.name;
}

std::string bytesOf(const AcDbObject& object) {
    host::MemoryDwgFiler filer(AcDb::kCopyFiler, object.database());
    const host::ReadAccess access(object);
    EXPECT_EQ(object.dwgOut(&filer), Acad::eOk);
    return filer.takeBytes();
}

host::ResbufList resbufOf(const AcDbObject& object) {
    host::ResbufDxfWriter writer(object.database());
    const host::ReadAccess access(object);
    EXPECT_EQ(object.dxfOut(&writer), Acad::eOk);
    return writer.release();
}

namespace {

class PlainWriter : public host::ResbufDxfWriter {
public:
    using ResbufDxfWriter::ResbufDxfWriter;
    bool includesDefaultValues() const override { return false; }
};

std::string rounded(double value) {
    char text[40];
    std::snprintf(text, sizeof text, "%.9g", value == 0.0 ? 0.0 : value);
    return text;
}

} // namespace

std::vector<std::string> groupsOf(const AcDbObject& object, bool withDefaults) {
    host::ResbufDxfWriter full(object.database());
    PlainWriter plain(object.database());
    const host::ReadAccess access(object);
    host::ResbufDxfWriter& writer = withDefaults ? full : plain;
    EXPECT_EQ(object.dxfOut(&writer), Acad::eOk);
    const host::ResbufList list = writer.release();
    std::vector<std::string> groups;
    for (const resbuf* at = list.get(); at != nullptr; at = at->rbnext) {
        std::string line = std::to_string(at->restype) + "=";
        switch (host::resbufKind(at->restype)) {
        case host::ResbufKind::real:
            line += rounded(at->resval.rreal);
            break;
        case host::ResbufKind::point:
            line += rounded(at->resval.rpoint[0]) + "," + rounded(at->resval.rpoint[1]) + "," +
                    rounded(at->resval.rpoint[2]);
            break;
        case host::ResbufKind::int16:
            line += std::to_string(at->resval.rint);
            break;
        case host::ResbufKind::int32:
            line += std::to_string(at->resval.rlong);
            break;
        case host::ResbufKind::string:
            if (at->restype == 5) {
                continue;
            }
            line += host::toUtf8(at->resval.rstring);
            break;
        default:
            continue;
        }
        groups.push_back(line);
    }
    return groups;
}

void initialize() {
    host::initializeRuntime();
    host::initializeDatabaseClasses();
}

} // namespace testing_entities
