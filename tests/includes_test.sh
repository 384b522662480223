#!/bin/sh
# The layers of the library include each other one way only: everything stands on channel, p2mp on lsp, and nothing
# goes back. A file that breaks this is named with its line.
set -eu
cd "$1"
failed=0

# check FILES ALLOWED: every project include of the files begins with one of the allowed folders.
check() {
  if grep -nHE '^ *# *include +"' $1 | grep -vE "\"($2)"; then
    failed=1
  fi
}

check 'channel/*' 'channel/|platform/|rsvp_mor/'
check 'status/*' 'status/|channel/|rsvp_mor/'
check 'tables/*' 'tables/|channel/|rsvp_mor/'
check 'lsp/*' 'lsp/|channel/|rsvp_mor/'
check 'p2mp/*' 'p2mp/|lsp/|channel/|rsvp_mor/'
check 'config/authentication.cpp config/debug.cpp config/parameters.cpp config/*.h' 'config/|channel/|rsvp_mor/'
check 'config/enable.cpp' 'config/|channel/|rsvp_mor/|platform/'
check 'include/*.h include/*/*.h' 'rsvp_mor/'
check 'platform/*' 'platform/'
[ "$failed" = 0 ] || echo "these includes go against the layers"
exit "$failed"
