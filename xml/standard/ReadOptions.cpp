#include "xml/standard/ReadOptions.h"

namespace Xml {

ReadOptions everything() {
    ReadOptions options;
    options.space = Space::All;
    options.keepComments = options.keepInstructions = options.keepCData = true;
    return options;
}

}  // namespace Xml
