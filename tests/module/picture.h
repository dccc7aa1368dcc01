// What an entity draws, reduced to what tests ask: lines or filled areas, and where texts stand.
#pragma once

#include "host/db/drawingsource.h"
#include "host/gi/flatten.h"

#include <vector>

struct Picture {
    struct Text {
        AcGePoint3d position;
        AcGeVector3d height; ///< from the base line to the top of a capital letter
    };
    int shapes = 0;
    std::vector<Text> texts;
};

inline Picture pictureOf(AcDbEntity& entity, AcGiRegenType regenType) {
    struct Sink : host::PrimitiveSink {
        Picture picture;
        void polyline(std::span<const AcGePoint3d>, const host::Pen&) override { ++picture.shapes; }
        void area(const host::Area&, const host::Pen&) override { ++picture.shapes; }
        void glyphs(const host::GlyphRun& run, const host::Pen&) override {
            picture.texts.push_back({run.origin, run.yAxis});
        }
    } sink;
    host::FlattenOptions options;
    options.regenType = regenType;
    const std::unique_ptr<host::DrawingSource> source = host::drawingSource(*entity.database());
    host::Flattener(*source, sink, options).draw(entity);
    return sink.picture;
}
