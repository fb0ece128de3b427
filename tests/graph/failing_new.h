// An operator new for this program that runs out of memory on demand.
#pragma once

// The n-th request from now, and all after it, throw std::bad_alloc; 0 is none. Set it for as
// short a time as possible.
extern int requestsUntilOutOfMemory;
