# Everything a newcomer needs; each target does its own set-up.
#     make demo [QUERY="the history of the roman empire" [MODEL=claude-opus-4-8]]
#     make demo SHOTS=folder      pictures of the panel instead, in every state and theme
#     make run                    the application itself, with your own keys
#     make test      make lint [ALL=1]      make bench      make fuzz [SECONDS=60]
#     make bench-desktop      make instructions

QUERY ?=
MODEL ?=
SHOTS ?=
SECONDS ?= 60

.PHONY: demo run test lint bench bench-desktop instructions fuzz clean

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

# $(call build,PROGRAM): optimised, without tests and benches; quiet unless it fails
define build
@mkdir -p build
@cmake --preset release -DVARNO_BENCH=OFF -DBUILD_TESTING=OFF -B build/demo >build/demo.log 2>&1 || { cat build/demo.log; exit 1; }
@cmake --build build/demo --target $(1) >build/demo.log 2>&1 || { cat build/demo.log; exit 1; }
endef

demo:
	@scripts/setup $(demo_needs)
	$(call build,$(demo_program))
	@$(demo_start) build/demo/demo/$(demo_program) $(demo_arguments)

run:
	@scripts/setup build window
	$(call build,varno)
	@build/demo/app/varno

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

instructions:
	@scripts/setup build bench
	scripts/instructions

fuzz:
	@scripts/setup build fuzz
	scripts/fuzz $(SECONDS)

clean:
	rm -rf build
