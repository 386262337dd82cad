// Element types the library's own code keeps in containers. Instantiating
// them here proves every member compiles for them; they are not exported.

#include "ZKContainer.h"

template class ZKContainer<double>;
template class ZKContainer<void*>;
template class ZKContainer<ZKContainer<double>>;
template class ZKContainer<ZKContainer<ZKContainer<double>>>;
