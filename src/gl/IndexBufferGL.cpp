#include "gl/IndexBufferGL.h"

#include "gl/GLTables.h"

namespace renderengine
{

void IndexBufferGL::create(const IndexBufferProperties& properties, BufferGL* newBuffer)
{
    update(properties, newBuffer);
}

void IndexBufferGL::update(const IndexBufferProperties& properties, BufferGL* newBuffer)
{
    const GLenum* newType = gltables::dataTypes.find(properties.dataType.getType());
    if (!newType)
    {
        return;
    }
    setBuffer(newBuffer);
    type = *newType;
    indexSize = properties.dataType.getSize();
    setDirty(true);
}

} // namespace renderengine
