#include <kavelor/SoKavelorBase.h>

#include <atomic>

#include <kavelor/SoError.h>

namespace
{

std::atomic<unsigned> s_initCount{0};

} // namespace

void SoKavelorBase::init()
{
    ++s_initCount;
}

void SoKavelorBase::finish()
{
    unsigned count = s_initCount.load();
    do
    {
        if (count == 0)
        {
            SoDebugError::post("SoKavelorBase::finish", "There is no call of init left to undo.");
            return;
        }
    } while (!s_initCount.compare_exchange_weak(count, count - 1));
}

bool SoKavelorBase::isInitialized()
{
    return s_initCount.load() > 0;
}
