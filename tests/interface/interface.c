/* Built as C99 and as C++11, with every warning an error: a header that one of the two languages refuses ends
   the build. */
#include <zprusb.h>
#include <zprusb_text.h>
