// The curves of a block as a net: pieces that meet at their ends, touch and cross, found when they are asked
// for.
#pragma once

#include "host/db/db.h"
#include "host/db/entities/curvepiece.h"
#include "host/ge/box_index.h"

#include <unordered_map>
#include <vector>

namespace host {

/// A piece of an entity's curve between two nodes, gone along in one direction.
struct NetEdge {
    AcDbStub* stub = nullptr;
    std::uint32_t piece = 0;
    std::uint32_t node = 0; ///< the interval lies between this node of the piece and the next
    bool isForward = true;

    NetEdge twin() const { return {stub, piece, node, !isForward}; }
    bool operator==(const NetEdge&) const = default;
};
struct NetEdgeHash {
    std::size_t operator()(const NetEdge& edge) const {
        std::size_t hash = std::hash<AcDbStub*>()(edge.stub);
        for (const std::size_t part :
             {std::size_t{edge.piece}, std::size_t{edge.node} * 2 + edge.isForward}) {
            hash ^= part + 0x9e3779b97f4a7c15ULL + (hash << 6) + (hash >> 2);
        }
        return hash;
    }
};

/// Thrown when so many curves cross each other that they are not followed any further, or the user stops it.
struct NetUnfinished {
    bool isByUser;
};

class CurveNet {
public:
    CurveNet(AcDbObjectId block, const AcGeVector3d& normal);
    /// Of these entities alone, whether they can be selected or not.
    CurveNet(std::vector<AcDbStub*> entities, const AcGeVector3d& normal);

    /// Pieces with the places along them where others meet them.
    struct Piece {
        CurvePiece curve;
        AcGePoint2d start, end;
        bool isCircle = false; ///< an arc of one
        Box2d box;
        std::vector<double> nodes; ///< ascending, its ends included; empty until asked for
    };
    struct Curves {
        std::vector<Piece> pieces;
        BoxIndex index;
    };

    double tolerance() const { return mTolerance; }
    /// Points of crossing and touching are counted as one within this.
    void setMagnitude(double magnitude) { mTolerance = 4.0 * pointTolerance(magnitude); }
    const Piece& pieceOf(const NetEdge& edge) { return curvesOf(edge.stub).pieces[edge.piece]; }
    const std::vector<double>& nodesOf(AcDbStub* stub, std::uint32_t piece);
    std::uint32_t intervals(AcDbStub* stub, std::uint32_t piece) {
        return static_cast<std::uint32_t>(nodesOf(stub, piece).size() - 1);
    }
    /// The parameters that the edge runs between, in its direction.
    std::pair<double, double> rangeOf(const NetEdge& edge);
    /// The edge that follows when the face to the left is gone round; the twin at a dead end.
    NetEdge next(const NetEdge& edge);

    /// Entities with curves that touch the box.
    std::vector<AcDbStub*> entitiesIn(const Box2d& box);
    Curves& curvesOf(AcDbStub* stub);
    /// Calls visit(stub, piece index) for the pieces whose box touches.
    template <class Visit>
    void forPieces(const Box2d& box, Visit&& visit) {
        for (AcDbStub* stub : entitiesIn(box)) {
            curvesOf(stub).index.search(box, [&](std::uint32_t piece) { visit(stub, piece); });
        }
    }

private:
    void findEntities();
    void countWork(std::size_t work);
    struct Branch {
        NetEdge edge;
        double angle = 0.0;     ///< of the direction it leaves in
        double curvature = 0.0; ///< positive to the left
    };
    void addBranches(AcDbStub* stub, std::uint32_t piece, const AcGePoint2d& at,
                     std::vector<Branch>& branches);
    Branch branch(const NetEdge& edge);

    AcDbObjectId mBlock;              ///< null for a net of given entities
    std::vector<AcDbStub*> mEntities; ///< the given ones; of a block when the plane is not that of its index
    BoxIndex mEntityIndex;            ///< of them in the plane
    bool mHasEntityIndex = false;
    std::size_t mWork = 0; ///< in pieces looked at
    std::size_t mNextQuestion = 0;
    AcGeMatrix3d mToPlane; ///< with Z taken away
    bool mIsPlan;          ///< the plane is that of the index
    double mTolerance = 4e-9;
    std::unordered_map<AcDbStub*, Curves> mCurves;
};

} // namespace host
