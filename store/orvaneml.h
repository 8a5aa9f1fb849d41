#pragma once

// The store's record layer as one include: the record classes, the view of an
// element's named descendants, and the text helpers with the warning log.

#include "store/orvanegeneric.h"
#include "store/records.h"
#include "store/xmlobject.h"
