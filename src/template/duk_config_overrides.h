/*
 * Our additions to Duktape's configuration. The build inserts this text at
 * the override marker of Debian's duk_config.h; nothing includes it directly.
 *
 * The interrupt counter makes the executor call the time-out check every few
 * thousand bytecode instructions; the check (duktape_heap.cpp) ends a script
 * that runs past its engine's deadline with a RangeError, and the heap stays
 * usable. Fastint keeps integer arithmetic (loop counters, indexes, lengths)
 * off the floating-point path.
 */
#define DUK_USE_INTERRUPT_COUNTER
#define DUK_USE_EXEC_TIMEOUT_CHECK(udata) bw_duk_exec_timeout_check(udata)
#define DUK_USE_FASTINT

#if defined(__cplusplus)
extern "C" {
#endif
/* True once the heap whose user data is `udata` has passed its deadline. */
duk_bool_t bw_duk_exec_timeout_check(void *udata);
#if defined(__cplusplus)
}
#endif
