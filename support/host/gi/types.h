// Enumerations and small value types of the drawing interface.
#pragma once

#include "host/ge/ge.h"

enum AcGiRegenType {
    eAcGiRegenTypeInvalid = 0,
    kAcGiStandardDisplay = 2,
    kAcGiHideOrShadeCommand,
    kAcGiRenderCommand,
    kAcGiForExplode,
    kAcGiSaveWorldDrawForProxy,
    kAcGiForExtents
};
// Historic names of the same values.
inline constexpr AcGiRegenType kAcGiShadedDisplay = kAcGiHideOrShadeCommand;

enum AcGiFillType { kAcGiFillAlways = 1, kAcGiFillNever };

enum AcGiArcType {
    kAcGiArcSimple = 0, // the arc alone
    kAcGiArcSector,     // closed over the centre
    kAcGiArcChord       // closed by the chord
};

enum AcGiDeviationType {
    kAcGiMaxDevForCircle = 0,
    kAcGiMaxDevForCurve,
    kAcGiMaxDevForBoundary,
    kAcGiMaxDevForIsoline,
    kAcGiMaxDevForFacet
};

enum AcGiVisibility { kAcGiInvisible = 0, kAcGiVisible, kAcGiSilhouette };

// Colours and visibilities of a mesh's or shell's edges; every pointer may be null and is not owned.
class AcGiEdgeData {
public:
    void setColors(const short* colors) { m_colors = colors; }
    void setTrueColors(const class AcCmEntityColor* colors) { m_trueColors = colors; }
    void setVisibility(const Adesk::UInt8* visibilities) { m_visibilities = visibilities; }
    const short* colors() const { return m_colors; }
    const AcCmEntityColor* trueColors() const { return m_trueColors; }
    const Adesk::UInt8* visibility() const { return m_visibilities; }

private:
    const short* m_colors = nullptr;
    const AcCmEntityColor* m_trueColors = nullptr;
    const Adesk::UInt8* m_visibilities = nullptr;
};

// The same for faces.
class AcGiFaceData {
public:
    void setColors(const short* colors) { m_colors = colors; }
    void setTrueColors(const class AcCmEntityColor* colors) { m_trueColors = colors; }
    void setNormals(const AcGeVector3d* normals) { m_normals = normals; }
    void setVisibility(const Adesk::UInt8* visibilities) { m_visibilities = visibilities; }
    const short* colors() const { return m_colors; }
    const AcCmEntityColor* trueColors() const { return m_trueColors; }
    const AcGeVector3d* normals() const { return m_normals; }
    const Adesk::UInt8* visibility() const { return m_visibilities; }

private:
    const short* m_colors = nullptr;
    const AcCmEntityColor* m_trueColors = nullptr;
    const AcGeVector3d* m_normals = nullptr;
    const Adesk::UInt8* m_visibilities = nullptr;
};

class AcGiVertexData {
public:
    void setNormals(const AcGeVector3d* normals) { m_normals = normals; }
    const AcGeVector3d* normals() const { return m_normals; }

private:
    const AcGeVector3d* m_normals = nullptr;
};

// A clip: what is drawn while it is pushed is cut at the boundary, a closed polygon of m_aptPoints in the
// plane through m_ptPoint with normal m_vNormal. Two points are the corners of a rectangle.
struct AcGiClipBoundary {
    AcGeVector3d m_vNormal = AcGeVector3d::kZAxis;
    AcGePoint3d m_ptPoint;
    AcGePoint2dArray m_aptPoints;
    AcGeMatrix3d m_xToClipSpace;
    AcGeMatrix3d m_xInverseBlockRefXForm;
    double m_dFrontClipZ = 0;
    double m_dBackClipZ = 0;
    Adesk::Boolean m_bClippingFront = false;
    Adesk::Boolean m_bClippingBack = false;
    Adesk::Boolean m_bDrawBoundary = false;
};
