// Which libraries take part in which work. A library is a type with a name, a tree, and operations of the same names;
// those that need not be installed are there where CMake has found them.
#pragma once
#include "libraries/LibXml2.h"
#include "libraries/OrvXml.h"
#include "libraries/PugiXml.h"
#include "libraries/Standard.h"
#include "libraries/TinyXml2.h"
#ifdef ORVXML_BENCH_EXPAT
#include "libraries/Expat.h"
#endif
#ifdef ORVXML_BENCH_RAPIDXML
#include "libraries/RapidXml.h"
#endif
#ifdef ORVXML_BENCH_XERCESC
#include "libraries/XercesC.h"
#endif

namespace bench {

// Those that answer paths.
template <class Use>
void forEachFinder(Use use) {
    use(OrvXml());
    use(PugiXml());
    use(LibXml2());
}

// Those that write a tree with indentation.
template <class Use>
void forEachWriter(Use use) {
    forEachFinder(use);
    use(TinyXml2());
#ifdef ORVXML_BENCH_XERCESC
    use(XercesC());
#endif
}

// Those that hold and copy a tree.
template <class Use>
void forEachTree(Use use) {
    forEachWriter(use);
#ifdef ORVXML_BENCH_RAPIDXML
    use(RapidXml());
#endif
}

// All: those that parse.
template <class Use>
void forEachLibrary(Use use) {
    forEachTree(use);
#ifdef ORVXML_BENCH_EXPAT
    use(Expat());
#endif
}

// Those whose reading of XML 1.0 is compared.
template <class Use>
void forEachStandard(Use use) {
    use(Standard());
    use(PugiXml());
}

}  // namespace bench
