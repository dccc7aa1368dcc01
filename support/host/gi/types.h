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
    void setColors(const short* colors) { mColors = colors; }
    void setTrueColors(const class AcCmEntityColor* colors) { mTrueColors = colors; }
    void setVisibility(const Adesk::UInt8* visibilities) { mVisibilities = visibilities; }
    const short* colors() const { return mColors; }
    const AcCmEntityColor* trueColors() const { return mTrueColors; }
    const Adesk::UInt8* visibility() const { return mVisibilities; }

private:
    const short* mColors = nullptr;
    const AcCmEntityColor* mTrueColors = nullptr;
    const Adesk::UInt8* mVisibilities = nullptr;
};

// The same for faces.
class AcGiFaceData {
public:
    void setColors(const short* colors) { mColors = colors; }
    void setTrueColors(const class AcCmEntityColor* colors) { mTrueColors = colors; }
    void setNormals(const AcGeVector3d* normals) { mNormals = normals; }
    void setVisibility(const Adesk::UInt8* visibilities) { mVisibilities = visibilities; }
    const short* colors() const { return mColors; }
    const AcCmEntityColor* trueColors() const { return mTrueColors; }
    const AcGeVector3d* normals() const { return mNormals; }
    const Adesk::UInt8* visibility() const { return mVisibilities; }

private:
    const short* mColors = nullptr;
    const AcCmEntityColor* mTrueColors = nullptr;
    const AcGeVector3d* mNormals = nullptr;
    const Adesk::UInt8* mVisibilities = nullptr;
};

class AcGiVertexData {
public:
    void setNormals(const AcGeVector3d* normals) { mNormals = normals; }
    const AcGeVector3d* normals() const { return mNormals; }

private:
    const AcGeVector3d* mNormals = nullptr;
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
