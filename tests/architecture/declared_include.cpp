#include "tasks/Executor.h"

// Built in two ways by the test beside it: by a target that names the room and by one that does not.
int declaredInclude() {
    return sizeof(kestrin::Executor) > 0 ? 0 : 1;
}
