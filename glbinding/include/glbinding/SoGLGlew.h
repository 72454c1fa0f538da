#pragma once

#include <glbinding/GLEWContextStruct.h>
#include <glbinding/WGLEWContextStruct.h>

/// The binding object of one GL context: it owns the context's two tables, whose addresses stay the same for its life.
///
/// Make it and call initGLEWContext and initGLEW on a thread on which the context is current. From then on any thread
/// may read the tables while the context is current there. Drop it only when no thread has its table as current.
class SoGLGlew
{
public:
    /// Makes tables of silent stubs.
    SoGLGlew();
    SoGLGlew(const SoGLGlew&) = delete;
    SoGLGlew& operator=(const SoGLGlew&) = delete;

    /// Puts silent stubs into both tables, and clears ivGlewUseContext.
    void initGLEWContext();

    /// Fills both tables from the current context and sets ivGlewUseContext when that succeeds.
    /// @return 0 on success, else the error number of SoGLEW::glewContextInit.
    unsigned initGLEW();

    /// Never null, owned by this object.
    GLEWContextStruct* getGLEWContext();
    /// Never null, owned by this object.
    WGLEWContextStruct* getWGLEWContext();

    /// True while the tables hold the functions of a context, false while they hold silent stubs.
    bool ivGlewUseContext = false;

private:
    GLEWContextStruct m_glTable;
    WGLEWContextStruct m_wglTable;
};
