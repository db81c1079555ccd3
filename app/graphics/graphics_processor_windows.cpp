#include "app/graphics/GraphicsProcessor.h"

#include <dxgi.h>

bool hasGraphicsProcessor() {
    IDXGIFactory1* factory = nullptr;
    if (FAILED(CreateDXGIFactory1(IID_IDXGIFactory1, reinterpret_cast<void**>(&factory))))
        return true; // unknown: use OpenGL
    bool found = false;
    IDXGIAdapter1* adapter = nullptr;
    for (UINT index = 0; !found && factory->EnumAdapters1(index, &adapter) == S_OK; ++index) {
        DXGI_ADAPTER_DESC1 description{};
        // Windows always lists a software adapter.
        found = SUCCEEDED(adapter->GetDesc1(&description)) &&
                (description.Flags & DXGI_ADAPTER_FLAG_SOFTWARE) == 0;
        adapter->Release();
    }
    factory->Release();
    return found;
}
