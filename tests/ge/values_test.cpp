// Vectors, matrices and planes: tables of known values and properties of random ones.
#include "host/ge/ge.h"

#include <gtest/gtest.h>
#include <random>

namespace {

constexpr double tight = 1e-12;

class Random {
public:
    double number(double low = -10.0, double high = 10.0) {
        return std::uniform_real_distribution<double>(low, high)(m_engine);
    }
    AcGeVector3d vector() { return {number(), number(), number()}; }
    AcGePoint3d point() { return {number(), number(), number()}; }

private:
    std::mt19937 m_engine{11};
};

TEST(Vector, AnglesFollowTheReferenceVector) {
    const AcGeVector3d x = AcGeVector3d::kXAxis, y = AcGeVector3d::kYAxis, z = AcGeVector3d::kZAxis;
    EXPECT_NEAR(x.angleTo(y), host::halfPi, tight);
    EXPECT_NEAR(x.angleTo(y, z), host::halfPi, tight);
    EXPECT_NEAR(x.angleTo(y, -z), 1.5 * host::pi, tight);
    EXPECT_NEAR(x.angleTo(-x, -z), host::pi, tight);
    EXPECT_EQ(x.angleTo(x, -z), 0.0);
    EXPECT_EQ((x * 3.0).angleTo(x * 5.0, z), 0.0);
    // An angle too small for its cosine.
    EXPECT_NEAR(x.angleTo(AcGeVector3d(1.0, 1e-9, 0.0)), 1e-9, 1e-20);
    EXPECT_NEAR(AcGeVector2d(0.0, -1.0).angle(), 1.5 * host::pi, tight);
    EXPECT_NEAR(AcGeVector3d(1.0, 1.0, 5.0).angleOnPlane(AcGePlane::kXYPlane), host::pi / 4.0, tight);
    EXPECT_NEAR(AcGeVector3d(0.0, 3.0, 3.0).angleOnPlane(AcGePlane::kYZPlane), host::pi / 4.0, tight);
}

TEST(Vector, PerpVectorTurnsLeftInThePlaneAndFollowsTheArbitraryAxisRule) {
    EXPECT_EQ(AcGeVector2d(3.0, 4.0).perpVector(), AcGeVector2d(-4.0, 3.0));
    EXPECT_EQ(AcGeVector3d(3.0, 4.0, 0.0).perpVector(), AcGeVector3d(-0.8, 0.6, 0.0));
    EXPECT_EQ(AcGeVector3d(0.0, 0.0, 2.0).perpVector(), AcGeVector3d::kXAxis);
    EXPECT_EQ(AcGeVector3d(0.0, 0.0, -2.0).perpVector(), -AcGeVector3d::kXAxis);
    // Either side of the rule's limit of 1/64.
    const double inside = 1.0 / 64.0 - 1e-6, outside = 1.0 / 64.0 + 1e-6;
    EXPECT_GT(AcGeVector3d(inside, 0.0, std::sqrt(1.0 - inside * inside)).perpVector().x, 0.9);
    EXPECT_GT(AcGeVector3d(outside, 0.0, std::sqrt(1.0 - outside * outside)).perpVector().y, 0.9);
}

TEST(Vector, RelationsAreFalseForZeroVectorsAndTellWhy) {
    const AcGeVector3d zero, x = AcGeVector3d::kXAxis;
    AcGeError flag = AcGe::kOk;
    EXPECT_FALSE(zero.isParallelTo(x, AcGeContext::gTol, flag));
    EXPECT_EQ(flag, AcGe::k0This);
    EXPECT_FALSE(x.isPerpendicularTo(zero, AcGeContext::gTol, flag));
    EXPECT_EQ(flag, AcGe::k0Arg1);
    EXPECT_TRUE(x.isParallelTo(x * -7.0));
    EXPECT_FALSE(x.isCodirectionalTo(x * -7.0));
    AcGeVector3d unchanged(1e-11, 0.0, 0.0);
    EXPECT_EQ(unchanged.normalize(AcGeContext::gTol, flag).x, 1e-11);
    EXPECT_EQ(flag, AcGe::k0This);
    EXPECT_EQ(x.project(AcGeVector3d::kZAxis, x, AcGeContext::gTol, flag).x, 1.0);
    EXPECT_EQ(flag, AcGe::kPerpendicularArg1Arg2);
}

TEST(Matrix, InverseUndoesEveryRegularMap) {
    Random random;
    for (int i = 0; i < 500; ++i) {
        AcGeMatrix3d matrix;
        matrix.setCoordSystem(random.point(), random.vector(), random.vector(), random.vector());
        if (std::fabs(matrix.det()) < 1.0)
            continue;
        EXPECT_TRUE((matrix * matrix.inverse()).isEqualTo(AcGeMatrix3d::kIdentity));
        const AcGePoint3d point = random.point();
        EXPECT_LT((matrix.inverse() * (matrix * point)).distanceTo(point), 1e-9);
        EXPECT_NEAR((matrix * matrix).det(), matrix.det() * matrix.det(), 1e-6 * matrix.det() * matrix.det());
    }
    AcGeMatrix3d flat;
    flat.entry[2][2] = 0.0;
    AcGeMatrix3d result;
    EXPECT_TRUE(flat.isSingular());
    EXPECT_FALSE(flat.inverse(result, 1e-10));
    EXPECT_TRUE(flat.inverse().isEqualTo(flat));
}

TEST(Matrix, MapsKeepWhatTheyMustKeep) {
    Random random;
    for (int i = 0; i < 200; ++i) {
        const AcGePoint3d center = random.point(), point = random.point();
        const AcGeVector3d axis = random.vector();
        const AcGeMatrix3d turn = AcGeMatrix3d::rotation(1.0, axis, center);
        EXPECT_LT((turn * (center + axis)).distanceTo(center + axis), 1e-10);
        EXPECT_NEAR((turn * point).distanceTo(center), point.distanceTo(center), 1e-10);
        EXPECT_TRUE(turn.isUniScaledOrtho());
        EXPECT_NEAR(turn.det(), 1.0, 1e-12);

        const AcGePlane plane(center, axis);
        const AcGePoint3d mirrored = AcGeMatrix3d::mirroring(plane) * point;
        EXPECT_NEAR(plane.signedDistanceTo(mirrored), -plane.signedDistanceTo(point), 1e-9);
        EXPECT_TRUE((mirrored - point).isParallelTo(axis) || mirrored.distanceTo(point) < 1e-9);
        const AcGeVector3d direction = random.vector();
        const AcGePoint3d projected = AcGeMatrix3d::projection(plane, direction) * point;
        EXPECT_NEAR(plane.signedDistanceTo(projected), 0.0, 1e-6);
        EXPECT_LT(projected.distanceTo(point.project(plane, direction)), 1e-6);

        const AcGePoint2d local = point.convert2d(plane);
        EXPECT_LT(AcGePoint3d(plane, local).distanceTo(point.orthoProject(plane)), 1e-10);
        const AcGePoint3d inPlane = AcGeMatrix3d::worldToPlane(plane) * point;
        EXPECT_NEAR(inPlane.x, local.x, 1e-10);
        EXPECT_NEAR(inPlane.z, plane.signedDistanceTo(point), 1e-10);
    }
    EXPECT_NEAR((AcGeMatrix2d::rotation(host::halfPi, {1.0, 0.0}) * AcGePoint2d(2.0, 0.0)).y, 1.0, tight);
    EXPECT_NEAR(AcGeMatrix3d::scaling(3.0, {1.0, 1.0, 1.0}).scale(), 3.0, tight);
}

TEST(Matrix, ArbitraryAxesAreTheRuleOfObjectCoordinates) {
    const AcGeMatrix3d top = host::arbitraryAxes(AcGeVector3d::kZAxis);
    EXPECT_TRUE(top.isEqualTo(AcGeMatrix3d::kIdentity));
    const AcGeMatrix3d below = host::arbitraryAxes(-AcGeVector3d::kZAxis);
    EXPECT_EQ(below * AcGePoint3d(1.0, 2.0, 3.0), AcGePoint3d(-1.0, 2.0, -3.0));
    const AcGeMatrix3d front = host::arbitraryAxes(-AcGeVector3d::kYAxis);
    EXPECT_EQ(front * AcGePoint3d(1.0, 2.0, 3.0), AcGePoint3d(1.0, -3.0, 2.0));
    Random random;
    for (int i = 0; i < 200; ++i) {
        const AcGeVector3d normal = random.vector();
        const AcGeMatrix3d axes = AcGeMatrix3d::planeToWorld(normal);
        EXPECT_TRUE(axes.isUniScaledOrtho());
        EXPECT_NEAR(axes.det(), 1.0, 1e-12);
        EXPECT_TRUE((axes * AcGeVector3d::kZAxis).isCodirectionalTo(normal));
        EXPECT_NEAR((axes * AcGeVector3d::kXAxis).z, 0.0, 1e-12);
        EXPECT_TRUE((AcGeMatrix3d::worldToPlane(normal) * axes).isEqualTo(AcGeMatrix3d::kIdentity));
    }
}

// A flat figure carried along by a map of space: its own coordinates, mapped within its plane, must describe
// the same points.
TEST(Matrix, ConvertToLocalDescribesTheTransformedPlane) {
    Random random;
    for (int i = 0; i < 200; ++i) {
        AcGeMatrix3d map;
        if (i % 2)
            map = AcGeMatrix3d::mirroring(AcGePlane(random.point(), random.vector()));
        else
            map.setCoordSystem(random.point(), random.vector(), random.vector(), random.vector());
        AcGeVector3d normal = random.vector();
        double elevation = random.number();
        const AcGePoint2d local(random.number(), random.number());
        const AcGePoint3d world = map * (host::arbitraryAxes(normal) * host::to3d(local, elevation));
        const AcGeMatrix2d within = map.convertToLocal(normal, elevation);
        const AcGePoint3d again = host::arbitraryAxes(normal) * host::to3d(within * local, elevation);
        EXPECT_LT(again.distanceTo(world), 1e-8);
    }
}

TEST(Plane, IntersectionsAndCoefficientsAgree) {
    const AcGePlane plane(0.0, 0.0, 2.0, -6.0);
    EXPECT_EQ(plane.pointOnPlane(), AcGePoint3d(0.0, 0.0, 3.0));
    double a, b, c, d;
    plane.getCoefficients(a, b, c, d);
    EXPECT_NEAR(c, 1.0, tight);
    EXPECT_NEAR(d, -3.0, tight);
    AcGePlane flipped = plane;
    EXPECT_FALSE(flipped.reverseNormal().isEqualTo(plane));
    EXPECT_TRUE(flipped.isCoplanarTo(plane));
    EXPECT_EQ(AcGePlane(AcGePoint3d(2, 0, 0), AcGePoint3d(1, 0, 0), AcGePoint3d(1, 5, 5)).normal(),
              AcGeVector3d(0.0, -1.0, 1.0).normal());
}

TEST(Angles, NormalisedAnglesStayInTheirRange) {
    for (const double angle : {0.0, -1e-18, -0.5, 7.0, -100.0, 1e6, host::twoPi, -host::twoPi}) {
        EXPECT_GE(host::normalizedAngle(angle), 0.0) << angle;
        EXPECT_LT(host::normalizedAngle(angle), host::twoPi) << angle;
        EXPECT_NEAR(std::sin(host::normalizedAngle(angle)), std::sin(angle), 1e-9);
        EXPECT_GT(host::signedAngle(angle), -host::pi) << angle;
        EXPECT_LE(host::signedAngle(angle), host::pi) << angle;
    }
}

} // namespace
