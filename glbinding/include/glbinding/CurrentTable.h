#pragma once

#include <glbinding/GLEWContextStruct.h>

/// The engine calls GL through a table of its thread. The thread's table is read once a call, without a lookup, and is
/// set afresh only where the current context may have changed: after a context was bound, at the start of a frame, of
/// a resource flush and of each present step, and after code of a client ran.
namespace renderengine::glbinding
{
/// The table whose entries do nothing and return 0, or null. It stands in where no context is current.
extern const GLEWContextStruct g_silentTable;

// A few bytes of static thread storage let a shared library read its table without a call.
#if defined(__ELF__)
#define GLBINDING_TLS_MODEL __attribute__((tls_model("initial-exec")))
#else
#define GLBINDING_TLS_MODEL
#endif

/// The calling thread's table, never null. Its initial value is a constant, so that reading it runs no initialiser.
/// Read it freely; write it through setCurrentTable, refreshCurrentTable and ScopedTable only.
inline thread_local const GLEWContextStruct* t_table GLBINDING_TLS_MODEL = &g_silentTable;

/// Finds the table of the context that is current on the calling thread; null when there is none.
using TableResolver = const GLEWContextStruct* (*)();

/// Finds a GL or WGL function by name for the context that is current on the calling thread. Null when the platform
/// does not know the name; an address does not mean that the context offers the function.
using ProcAddressLoader = void* (*)(const char* name);

/// Makes `table` the calling thread's table; null stands for the silent one. The table must outlive its use here.
/// Has no effect while a ScopedTable is alive on this thread.
void setCurrentTable(const GLEWContextStruct* table);

/// Asks the resolver for the calling thread's table. Without a resolver, or while a ScopedTable is alive on this
/// thread, nothing changes.
void refreshCurrentTable();

/// Installs the resolver for all threads, null to remove it. Any thread may call it at any time.
void setTableResolver(TableResolver resolver);

/// Installs the loader for all threads, null to remove it. Any thread may call it at any time; tables that were
/// filled before stay as they are.
void setProcAddressLoader(ProcAddressLoader loader);

/// The installed loader, or null.
ProcAddressLoader getProcAddressLoader();

/// Pins a table for the calling thread: as long as the object lives, neither setCurrentTable nor refreshCurrentTable
/// changes it. Scopes nest, and end on the thread and in the reverse order in which they began; the end of a scope
/// brings back what was current before. The table must outlive the scope; null pins the silent table.
class ScopedTable
{
public:
    explicit ScopedTable(const GLEWContextStruct* table);
    ~ScopedTable();
    ScopedTable(const ScopedTable&) = delete;
    ScopedTable& operator=(const ScopedTable&) = delete;

private:
    const GLEWContextStruct* m_previousTable;
    bool m_previouslyPinned;
};
} // namespace renderengine::glbinding
