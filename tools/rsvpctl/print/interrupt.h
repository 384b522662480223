// Ctrl-C, or the end of the time, in the middle of a JSON document. A program that reads the document gets a whole
// one: the rows that came, and that they are not all. What the tool waits for cannot always be called off, so the
// document is ended by the signal's own handler, from a text that is ready at any moment.
#ifndef TOOLS_RSVPCTL_PRINT_INTERRUPT_H
#define TOOLS_RSVPCTL_PRINT_INTERRUPT_H

#include "tools/rsvpctl/print/statuses.h"

#include <string>

namespace rsvpctl {

/** What makes a whole document of what is written so far. */
struct Endings {
    std::string interrupted;
    std::string timeOver; // empty unless the time is limited
};

/** From now on Ctrl-C writes its ending to the descriptor and ends the process, unless Ctrl-C is to be ignored. */
void EndDocumentEarly(int document, Endings endings);

/** For signal handlers: writes the ending, if there is a document, and ends the process. While the document grows,
 * this waits for its end and returns; a second time it does not wait. */
void EndEarly(Exit exit);

/** While it lives, the document grows. */
class DocumentWrite {
public:
    DocumentWrite();
    ~DocumentWrite();
    DocumentWrite(const DocumentWrite &) = delete;
    DocumentWrite &operator=(const DocumentWrite &) = delete;

    /** What ends the document as it is after this write. */
    void SetEndings(Endings endings);
};

} // namespace rsvpctl

#endif
