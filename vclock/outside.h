// Programs outside the domain that have the other end of what is waited for.
#ifndef VCLOCK_OUTSIDE_H
#define VCLOCK_OUTSIDE_H

#include <poll.h>
#include <stdint.h>

namespace vclock {

// Whether a process outside the domain has the other end of one of the pipes, or a socket that was
// made in the domain. Looks through all processes of the machine: for when nothing else is left.
bool heldOutside(const pollfd* files, nfds_t count);

// Whether a pipe or socket was made in the domain.
bool knownPipe(uint64_t inode);

}  // namespace vclock

#endif
