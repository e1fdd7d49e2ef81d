#pragma once

// XML 1.0 as others write it: reading it, and the nodes of its trees.
#include "xml/dom/Attribute.h"
#include "xml/dom/CDataSection.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Comment.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dom/Instruction.h"
#include "xml/dom/NodeKind.h"
#include "xml/dom/Object.h"
#include "xml/dom/Place.h"
#include "xml/dom/Prolog.h"
#include "xml/dtd/Dtd.h"
#include "xml/standard/Problem.h"
#include "xml/standard/Read.h"
#include "xml/standard/ReadOptions.h"
#include "xml/standard/ReadResult.h"
