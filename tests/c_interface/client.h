/* The client in plain C. */
#ifdef __cplusplus
extern "C" {
#endif

/* Null, or what did not hold. The library is attached; makes a library of that name. */
const char* zocClient(const char* library);

#ifdef __cplusplus
}
#endif
