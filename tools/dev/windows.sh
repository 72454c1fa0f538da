# shellcheck shell=bash
# The parts of `./dev windows`: a Wine prefix and an X server in a scratch folder, both gone with the run.

# start_wine: exports DISPLAY and WINEPREFIX for tools/dev/wine.
start_wine()
{
    WINE_SCRATCH=$(mktemp -d)
    trap stop_wine EXIT
    trap 'exit 130' INT TERM

    mkfifo "$WINE_SCRATCH/display"
    # Without -noreset the server starts anew, as slowly as at first, whenever its last client leaves.
    Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp -noreset \
        3>"$WINE_SCRATCH/display" >"$WINE_SCRATCH/xvfb.log" 2>&1 &
    XVFB_PID=$!
    local number
    if ! read -r -t 30 number <"$WINE_SCRATCH/display"; then
        cat "$WINE_SCRATCH/xvfb.log" >&2
        echo "dev: the X server does not start" >&2
        return 1
    fi
    export DISPLAY=:$number
    export WINEPREFIX=$WINE_SCRATCH/prefix
    export WINEDEBUG=-all
    # No installers for .NET and HTML, no menu entries on the host, and no debugger that waits at a crash.
    export WINEDLLOVERRIDES='mscoree,mshtml=;winemenubuilder.exe,winedbg.exe=d'
    # Always the driver that draws on the processor, whatever the machine has.
    export LIBGL_ALWAYS_SOFTWARE=1
    # Wine talks to one server process a prefix. Kept alive, it need not start for each test.
    mkdir "$WINEPREFIX"
    wineserver --persistent=600
    quiet_step "make a Wine prefix" timeout 180 wine wineboot --init
}

stop_wine()
{
    # Ends the programs of this prefix alone.
    if [ -n "${WINEPREFIX:-}" ] && [ -d "$WINEPREFIX" ]; then
        timeout 30 wineserver --kill || true
        timeout 30 wineserver --wait || true
    fi
    if [ -n "${XVFB_PID:-}" ]; then
        kill "$XVFB_PID" 2>/dev/null || true
        wait "$XVFB_PID" 2>/dev/null || true
    fi
    rm -rf "$WINE_SCRATCH"
}

# windows_demo: the demo's model, drawn by the Windows viewer under Wine, must be the picture of the Linux viewer.
windows_demo()
{
    local model=/usr/share/assimp/models/glTF2/2CylinderEngine-glTF-Binary/2CylinderEngine.glb
    local size=800x600
    mkdir -p out
    rm -f out/windows*.png
    build/release/bin/renderengine-view "$model" --size "$size" -o out/windows-linux.png
    # Drive Z is the host's file system. Without the letter the path would be an option's name on Windows.
    timeout 120 tools/dev/wine build/windows/bin/renderengine-view.exe "Z:$model" --size "$size" -o out/windows.png
    # The models are read by different loaders and the edges fall on either side of a sample.
    build/release/bin/image-compare out/windows-linux.png out/windows.png \
        --tolerance 3 --max-different 480 --min-colors 16 --difference out/windows-difference.png
}
