# Everything a newcomer needs; each target does its own set-up.
#     make demo [QUERY="the history of the roman empire" [MODEL=claude-opus-4-8]]
#     make demo SHOTS=folder      pictures of the panel instead, in every state and theme
#     make run                    the application itself, with your own keys
#     make install [PREFIX=~/.local] [DESTDIR=folder]      make uninstall (likewise)
#     make package                the package of this Debian or macOS, in build/package
#     make check-macos            compiles and links the program for macOS, elsewhere
#     make test      make lint [ALL=1]      make bench      make fuzz [SECONDS=60]
#     make bench-desktop      make instructions
#     make desktops [SESSIONS="xfce sway"] [INSTALLED=/usr]     in real sessions of real desktops

QUERY ?=
MODEL ?=
SHOTS ?=
SECONDS ?= 60
PREFIX ?= /usr/local
DESTDIR ?=
SESSIONS ?=
INSTALLED ?=
$(if $(word 2,$(PREFIX))$(word 2,$(DESTDIR)),$(error PREFIX and DESTDIR can have no blanks))

.PHONY: demo run install uninstall package test lint bench bench-desktop desktops instructions fuzz
.PHONY: check-macos clean

mac = $(filter Darwin,$(shell uname -s))
quoted = '$(subst ','\'',$(1))'
ifneq ($(SHOTS),)
demo_needs = build shots
demo_program = varno-demo-shots
demo_start = scripts/with-display scripts/with-keyring --display
demo_arguments = $(call quoted,$(SHOTS))
else
demo_needs = build $(if $(demo_window),window)
demo_program = varno-demo$(addprefix -,$(demo_window))
demo_start = scripts/with-keyring $(if $(demo_window),--display)
demo_arguments = $(call quoted,$(QUERY)) $(if $(MODEL),$(call quoted,$(MODEL)))
demo_window = $(if $(DISPLAY)$(WAYLAND_DISPLAY),application)
endif

# $(call quiet,FOLDER,COMMAND): unless it fails
quiet = @$(2) >$(1).log 2>&1 || { cat $(1).log; exit 1; }

# $(call build,FOLDER,TARGET,OPTIONS): optimised, without tests and benches
define build
@mkdir -p build
$(call quiet,$(1),cmake --preset release -DVARNO_BENCH=OFF -DBUILD_TESTING=OFF $(3) -B $(1))
$(call quiet,$(1),cmake --build $(1) --target $(2))
endef
program = $(call build,build/program,$(1),-DVARNO_DEMO=OFF $(2))

prefix = $(call quoted,$(abspath $(patsubst ~/%,$(HOME)/%,$(PREFIX))))
root = $(if $(DESTDIR),$(call quoted,$(abspath $(DESTDIR))))

demo:
	@scripts/setup $(demo_needs)
	$(call build,build/demo,$(demo_program))
	@$(demo_start) build/demo/demo/$(demo_program) $(demo_arguments)

run:
	@scripts/setup program window
	$(call program,varno)
	@build/program/app/varno$(if $(mac),.app/Contents/MacOS/varno)

install:
	@scripts/setup program
	$(call program,all,-DCMAKE_INSTALL_PREFIX=$(prefix))
	$(call quiet,build/program,DESTDIR=$(root) cmake --install build/program --strip)
	@touch $(root)$(prefix)/share/icons/hicolor # what is cached of the icons is out of date

# What an installation would put there goes.
uninstall:
	@scripts/setup program
	$(call program,all,-DCMAKE_INSTALL_PREFIX=$(prefix))
	@rm -rf build/uninstall
	$(call quiet,build/program,DESTDIR="$(CURDIR)/build/uninstall" cmake --install build/program)
	@cd build/uninstall && find . -type f -printf '%P\0' | (cd $(root)/ && xargs -0 rm -f)
	@cd build/uninstall && find . -depth -type d -path '*/varno*' -printf '%P\0' | \
		(cd $(root)/ && xargs -0 rmdir --ignore-fail-on-non-empty 2>/dev/null || true)

package:
	@scripts/setup package
	@scripts/package$(if $(mac),-macos)

check-macos:
	@scripts/setup program macos
	@scripts/check-macos

test:
	@scripts/setup build test
	cmake --preset dev
	cmake --build --preset dev
	ctest --preset dev

lint:
	@scripts/setup build test lint
	scripts/lint $(if $(ALL),--all)

bench:
	@scripts/setup build bench
	scripts/bench

bench-desktop:
	@scripts/setup build desktop-bench
	scripts/bench-desktop

# What is installed there, or else what is built here.
desktops:
	@scripts/setup desktops
ifeq ($(INSTALLED),)
	@$(MAKE) install PREFIX=build/desktops/installed
endif
	@scripts/desktops --prefix $(or $(INSTALLED),build/desktops/installed) $(SESSIONS)

instructions:
	@scripts/setup build bench
	scripts/instructions

fuzz:
	@scripts/setup build fuzz
	scripts/fuzz $(SECONDS)

clean:
	rm -rf build
