#include "preprocessor/received.h"

#include "exchange/check.h"
#include "preprocessor/document_record.h"

namespace orvml_examples {

void requireReceivedAsSent(const Received& received) {
  requireSameValues(received.sent, recordOf(received.document, received.group), kTransmittedKeys);
  for (const auto entity : {ORVML_NODES, ORVML_EDGES, ORVML_FACES, ORVML_ELEMENTS}) {
    require(received.document.namesToTransmit(entity).empty(),
            "an attribute that was read from a file has the must-be-transmitted flag");
  }
}

}  // namespace orvml_examples
