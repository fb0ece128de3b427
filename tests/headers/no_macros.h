// Included behind a public header: no macro of windows.h may be there, small words least of all.
#if defined(_WINDOWS_) || defined(_INC_WINDOWS) || defined(_WINDEF_) || defined(_GUIDDEF_H_)
#error "a public header includes one of the platform's"
#endif
#if defined(near) || defined(far) || defined(NEAR) || defined(FAR) || defined(min) || defined(max)
#error "a word of geometry is a macro"
#endif
#if defined(small) || defined(interface) || defined(IN) || defined(OUT) || defined(ERROR) ||     \
    defined(DELETE) || defined(VOID) || defined(CONST) || defined(TRUE) || defined(GetObject) || \
    defined(CreateFile) || defined(GetMessage)
#error "a word of anybody's is a macro"
#endif
