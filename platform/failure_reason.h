#ifndef ZEXIF_PLATFORM_FAILURE_REASON_H
#define ZEXIF_PLATFORM_FAILURE_REASON_H

// Why a call failed, kept per thread for zExifGetLastError: the library's only
// state outside its handles. Code deep inside notes a reason where it knows
// one (a file that won't open, a bound passed, an allocation that failed);
// the export that then fails records that reason, or its own where nothing
// deeper said why. The first reason noted in a call wins, as what goes wrong
// after it is mostly its consequence.

// Forgets a reason that an earlier call noted and then didn't need. Every
// export that can fail for a deeper reason begins with it.
void BeginExport();

// Notes code as the reason of the call under way, unless one is noted
// already. Returns 0, the failure result of an internal routine.
int NoteFailure(int code);

// Notes the reason of the system call that just failed: refused access by
// errno, else code.
int NoteSystemFailure(int code);

// Records the noted reason, or code when none was noted, as the thread's last
// error. Returns -1, the failure result of an export.
int FailExport(int code);

int LastError();

// The reason noted in the call under way, ZEXIF_ERROR_NONE while none is.
int NotedFailure();

// A query given a null handle: records an argument error and returns 0, the
// answer such a query gives.
int RefuseNullHandle();

#endif
