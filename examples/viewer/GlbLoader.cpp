// The viewer's only loader where assimp is not at hand.

#include "GlbModel.h"

namespace viewer
{

Model loadModel(const std::string& path)
{
    return loadGlb(path);
}

} // namespace viewer
