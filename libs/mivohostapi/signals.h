#pragma once

#include <sigslot/signal.hpp>

// The signals of the store and of the services are part of the binary boundary: library and host
// must have the same ones. They are the sigslot library's, or those of the adaptor over
// Boost.Signals2 that this package brings in mivohostapi/compat. MIVO_SIGNALS_OVER_BOOST, which
// comes with the CMake package and the .pc file, says which ones the library was built with (1, 0).
#if defined(MIVO_SIGNALS_OVER_BOOST) && MIVO_SIGNALS_OVER_BOOST && !defined(MIVO_SIGSLOT_ADAPTOR)
#error "This mivosettingswidgets was built with its own signals over Boost.Signals2, but another \
<sigslot/signal.hpp> was found: put mivohostapi/compat first, or build it with that library"
#elif defined(MIVO_SIGNALS_OVER_BOOST) && !MIVO_SIGNALS_OVER_BOOST && defined(MIVO_SIGSLOT_ADAPTOR)
#error "This mivosettingswidgets was built with the sigslot library, but <sigslot/signal.hpp> of \
mivohostapi/compat was found: take that folder out of the include path"
#endif
