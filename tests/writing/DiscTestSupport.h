// What the writer's tests share beside the service's helpers: trees of record objects made
// through the class objects, as a host makes them, and bytes encoded independently of the engine.
#ifndef HALVORINE_TESTS_WRITING_DISCTESTSUPPORT_H
#define HALVORINE_TESTS_WRITING_DISCTESTSUPPORT_H

#include <string>
#include <vector>

#include "engine/encoding/ElementBytes.h"
#include "service/ServiceTestSupport.h"

namespace halvorine {

BString Bstr(const std::string& narrowText);

// The paths of everything below folder, relative to it, in byte order.
std::vector<std::string> Entries(const std::string& folder);

// Patients, their studies, their series, and the count of images in each series.
using TreeShape = std::vector<std::vector<std::vector<int>>>;

// A tree of that shape, every field that a record carries filled from the indices, each image
// naming imageSource. A patient or study without children holds an empty array; a series
// without images keeps its null array, as a load leaves it.
SafeArrayPtr MakeTree(const TreeShape& shape, const std::string& imageSource, LONG lowerBound = 0);

// What tool prints of the DICOMDIR of the disc P1 { S1 { E1 { I1 I2 } E2 { } } S2 { } }
// P2 { S1 { E1 { I1 } } }, made through the service as a host makes it.
std::string ToolOutputOfADisc(const std::string& tool);

}  // namespace halvorine

#endif  // HALVORINE_TESTS_WRITING_DISCTESTSUPPORT_H
