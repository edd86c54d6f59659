# Homebrew formula: installs the checkout that it stands in.
#   brew install --HEAD --formula packaging/tpu.rb
class Tpu < Formula
  desc "Full-screen text editor programmed in TPU, a language for processing text"
  head "file://#{File.expand_path("..", __dir__)}", using: :git, branch: "main"

  depends_on "cmake" => :build
  depends_on "xxhash" => :build
  depends_on "ncurses"

  def install
    system "cmake", "-S", ".", "-B", "build", *std_cmake_args
    system "cmake", "--build", "build"
    system "cmake", "--install", "build"
  end

  test do
    (testpath/"test.tpu").write <<~TPU
      COPY_TEXT("hello")
      ASSERT_EQ(CURRENT_LINE, "hello")
    TPU
    assert_match "1 passed, 0 failed", shell_output("#{bin}/tpu --test test.tpu")
  end
end
