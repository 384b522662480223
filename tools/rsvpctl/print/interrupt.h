// Ctrl-C in the middle of a JSON document. A program that reads the document gets a whole one: the rows that came,
// and that they are not all. The library waits up to 10 seconds for an answer and cannot be called off, so the
// document is ended by the signal's own handler, from a text that is ready at any moment.
#ifndef TOOLS_RSVPCTL_PRINT_INTERRUPT_H
#define TOOLS_RSVPCTL_PRINT_INTERRUPT_H

#include <string>

namespace rsvpctl {

/** From now on Ctrl-C writes `ending` to standard output and ends the process, unless Ctrl-C is to be ignored. */
void EndDocumentOnInterrupt(std::string ending);

/** While it lives, the document grows: Ctrl-C waits for its end, a second one does not. */
class DocumentWrite {
public:
    DocumentWrite();
    ~DocumentWrite();
    DocumentWrite(const DocumentWrite &) = delete;
    DocumentWrite &operator=(const DocumentWrite &) = delete;

    /** What ends the document as it is after this write. */
    void SetEnding(std::string ending);
};

} // namespace rsvpctl

#endif
