#pragma once

#include "orvsys/Uni16.h"
#include "xml/xpath/XPath.h"

namespace Xml {

// What ended an evaluation. A code of NONE is an error too: some paths fail without saying why.
struct PathError {
    XPath::ErrorCode code = XPath::NONE;
    OrvSys::Uni16String text;

    // For returning at once.
    bool set(XPath::ErrorCode itsCode, OrvSys::Uni16String&& itsText) {
        code = itsCode;
        text = std::move(itsText);
        return false;
    }
};

}  // namespace Xml
