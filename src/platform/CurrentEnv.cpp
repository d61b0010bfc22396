#include "platform/Env.h"

// Kept in a file of its own, outside the platform objects: the library and its tools link this
// definition; the test binaries link one that lets a test put another Env in its place.
namespace qzr::platform {

Env* CurrentEnv() {
    return Env::Default();
}

}  // namespace qzr::platform
