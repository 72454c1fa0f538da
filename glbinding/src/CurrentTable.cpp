#include <glbinding/CurrentTable.h>

#include <atomic>

namespace renderengine::glbinding
{
namespace
{
std::atomic<TableResolver> s_resolver{nullptr};
std::atomic<ProcAddressLoader> s_loader{nullptr};
thread_local bool t_pinned = false;

const GLEWContextStruct* orSilent(const GLEWContextStruct* table)
{
    return table != nullptr ? table : &g_silentTable;
}
} // namespace

void setCurrentTable(const GLEWContextStruct* table)
{
    if (!t_pinned)
    {
        t_table = orSilent(table);
    }
}

void refreshCurrentTable()
{
    if (t_pinned)
    {
        return;
    }
    if (const TableResolver resolver = s_resolver.load(std::memory_order_acquire))
    {
        t_table = orSilent(resolver());
    }
}

void setTableResolver(TableResolver resolver)
{
    s_resolver.store(resolver, std::memory_order_release);
}

void setProcAddressLoader(ProcAddressLoader loader)
{
    s_loader.store(loader, std::memory_order_release);
}

ProcAddressLoader getProcAddressLoader()
{
    return s_loader.load(std::memory_order_acquire);
}

ScopedTable::ScopedTable(const GLEWContextStruct* table) : m_previousTable(t_table), m_previouslyPinned(t_pinned)
{
    t_table = orSilent(table);
    t_pinned = true;
}

ScopedTable::~ScopedTable()
{
    t_table = m_previousTable;
    t_pinned = m_previouslyPinned;
}
} // namespace renderengine::glbinding
