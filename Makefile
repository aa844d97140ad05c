# Everything a newcomer needs; each target does its own set-up.
#     make demo QUERY="the history of the roman empire" [MODEL=claude-opus-4-8]
#     make test      make lint      make bench      make fuzz [SECONDS=60]

QUERY ?= the history of the roman empire
MODEL ?=
SECONDS ?= 60

.PHONY: demo test lint bench fuzz clean

demo:
	@scripts/setup build
	@cmake --preset release -DVARNO_BENCH=OFF -DBUILD_TESTING=OFF -B build/demo >build/demo.log 2>&1 || { cat build/demo.log; exit 1; }
	@cmake --build build/demo --target varno-demo >build/demo.log 2>&1 || { cat build/demo.log; exit 1; }
	@scripts/with-keyring build/demo/demo/varno-demo '$(subst ','\'',$(QUERY))' $(MODEL)

test:
	@scripts/setup build
	cmake --preset dev
	cmake --build --preset dev
	ctest --preset dev

lint:
	@scripts/setup build lint
	scripts/lint

bench:
	@scripts/setup build bench
	scripts/bench

fuzz:
	@scripts/setup build fuzz
	scripts/fuzz $(SECONDS)

clean:
	rm -rf build
