#pragma once

#include "xml/standard/internal/Landmarks.h"
#include "xml/standard/internal/LineTable.h"
#include "xml/standard/internal/PlaceSource.h"
#include <cstdint>
#include <memory>

namespace Xml {

// Where the nodes of one tree begin, while it is read: what nodes hold of that, and what the tree keeps for the rest.
//
// Of a text of UTF-8 that is held as a whole nothing need be noted: the table of its lines is made at the end.
class NodePlaces {
public:
    // The source must stay.
    explicit NodePlaces(PlaceSource& itsSource)
        : source(itsSource), lines(itsSource.lines()), shift(lines != nullptr ? lines->shift() : 0) {
        if (lines == nullptr) landmarks = std::make_unique<Landmarks>();
    }

    // A node begins at that offset in the text: the offset in the source. They rise.
    std::int64_t note(std::int64_t offset) { return lines != nullptr ? offset + shift : noteOther(offset); }

    // Once, after all of them.
    std::unique_ptr<const PlaceTable> take() {
        if (lines != nullptr) return std::make_unique<LineTable>(lines->whole(), shift);
        return std::move(landmarks);
    }

private:
    [[gnu::noinline]] std::int64_t noteOther(std::int64_t offset) {
        const Place place = source.of(offset);
        landmarks->add(place);
        return place.offset;
    }

    PlaceSource& source;
    const LineRuns* lines;
    std::int64_t shift;
    std::unique_ptr<Landmarks> landmarks;
};

}  // namespace Xml
