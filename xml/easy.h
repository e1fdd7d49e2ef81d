#pragma once

// Short ways for daily work with trees, read by whichever reader.
#include "xml/easy/Ask.h"
#include "xml/easy/Compare.h"
#include "xml/easy/Diagnostics.h"
#include "xml/easy/Namespaces.h"
#include "xml/easy/Range.h"
#include "xml/easy/Ranges.h"
#include "xml/easy/Texts.h"
#include "xml/easy/Trees.h"
#include "xml/easy/Values.h"
